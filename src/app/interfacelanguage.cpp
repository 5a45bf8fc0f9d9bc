#include "app/interfacelanguage.h"

#include "model/logcategories.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QQmlEngine>
#include <QSettings>
#include <QTranslator>

using namespace Qt::StringLiterals;

namespace {
// The few texts of Qt's that its Chinese catalogues leave in English: the labels of the file
// dialog Qt Quick draws where the desktop has none (Qt 6.4). Installed before the catalogues, so
// a catalogue that has them wins.
class MissingQtTexts : public QTranslator
{
public:
    using QTranslator::QTranslator;

    QString translate(const char *context, const char *sourceText, const char *, int) const override
    {
        if (qstrcmp(context, "FileDialog") != 0)
            return {};
        if (qstrcmp(sourceText, "Filter") == 0)
            return QStringLiteral("文件类型");
        if (qstrcmp(sourceText, "File name") == 0)
            return QStringLiteral("文件名");
        return {};
    }
    bool isEmpty() const override { return false; }
};

const QLocale chineseLocale(QLocale::Chinese, QLocale::SimplifiedChineseScript, QLocale::China);
} // namespace

InterfaceLanguage::InterfaceLanguage(QObject *parent)
    : QObject(parent)
{
}

InterfaceLanguage *InterfaceLanguage::instance()
{
    static auto *language = new InterfaceLanguage(QCoreApplication::instance());
    return language;
}

QString InterfaceLanguage::resolve(const QString &setting, const QStringList &uiLanguages)
{
    if (setting == QLatin1String(Chinese) || setting == QLatin1String(English))
        return setting;
    for (const QString &name : uiLanguages) {
        const QString lower = name.toLower();
        if (lower.startsWith(u"zh"))
            return QString::fromLatin1(Chinese);
        if (lower.startsWith(u"en"))
            return QString::fromLatin1(English);
    }
    return QString::fromLatin1(Chinese);
}

void InterfaceLanguage::applyAtStart()
{
    load(resolve(setting(), QLocale::system().uiLanguages()));
}

void InterfaceLanguage::attachEngine(QQmlEngine *engine)
{
    m_engines.removeAll(nullptr);
    if (!m_engines.contains(engine))
        m_engines.append(engine);
}

QString InterfaceLanguage::setting() const
{
    const QString stored = QSettings().value(QLatin1String(SettingKey)).toString();
    return stored == QLatin1String(Chinese) || stored == QLatin1String(English) ? stored : u"system"_s;
}

void InterfaceLanguage::setSetting(const QString &value)
{
    if (value == setting())
        return;
    if (value == u"system")
        QSettings().remove(QLatin1String(SettingKey));
    else
        QSettings().setValue(QLatin1String(SettingKey), value);
    Q_EMIT settingChanged();
    const QString wanted = resolve(value, QLocale::system().uiLanguages());
    if (wanted == m_language)
        return;
    load(wanted);
    for (QQmlEngine *engine : std::as_const(m_engines)) {
        if (engine)
            engine->retranslate();
    }
    Q_EMIT languageChanged();
}

void InterfaceLanguage::load(const QString &language)
{
    for (QTranslator *translator : std::as_const(m_translators)) {
        QCoreApplication::removeTranslator(translator);
        delete translator;
    }
    m_translators.clear();
    m_language = language;
    // English numbers and dates in English; in Chinese the formats stay as they were before any
    // language was chosen (the texts' own formats are written out, ISO dates among them).
    static const QLocale atStart;
    QLocale::setDefault(
        language == QLatin1String(English) ? QLocale(QLocale::English, QLocale::UnitedStates) : atStart);

    const auto install = [this](QTranslator *translator) {
        QCoreApplication::installTranslator(translator);
        m_translators.append(translator);
    };
    if (language == QLatin1String(English)) {
        auto *ours = new QTranslator(this);
        if (ours->load(u":/i18n/quillbox_en.qm"_s))
            install(ours);
        else
            delete ours;
        // Qt's own texts are written in English.
        return;
    }
    // The catalogues of the modules the interface uses: qtbase (standard dialogs, widgets' texts)
    // and qtdeclarative (Qt Quick's dialogs and controls). Qt's "qt" catalogue would bring
    // qtmultimedia instead of qtdeclarative.
    install(new MissingQtTexts(this));
    const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    for (const QString &catalogue : { u"qtbase"_s, u"qtdeclarative"_s }) {
        auto *translator = new QTranslator(this);
        if (translator->load(chineseLocale, catalogue, u"_"_s, folder)) {
            install(translator);
        } else {
            qCInfo(lcUi, "Qt's Chinese translations (%ls) are not installed", qUtf16Printable(catalogue));
            delete translator;
        }
    }
}
