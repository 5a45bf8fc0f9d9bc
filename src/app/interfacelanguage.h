#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

class QQmlEngine;
class QTranslator;

// The language the interface speaks: the texts in the code are Simplified Chinese, and an English
// translation is loaded over them. The setting "interfaceLanguage" is "system" (the default),
// "zh_CN" or "en"; a change applies at once: the translators are swapped, numbers and dates follow
// the language (QLocale's default), and every QML engine shown to setupQmlEngine retranslates.
// Qt's own texts (dialogs, context menus) come from its catalogues for the same language.
class InterfaceLanguage : public QObject
{
    Q_OBJECT
    // As stored: "system", "zh_CN" or "en".
    Q_PROPERTY(QString setting READ setting WRITE setSetting NOTIFY settingChanged)
    // What is spoken now: "zh_CN" or "en".
    Q_PROPERTY(QString language READ language NOTIFY languageChanged)

public:
    static constexpr auto SettingKey = "interfaceLanguage";
    static constexpr auto Chinese = "zh_CN";
    static constexpr auto English = "en";

    static InterfaceLanguage *instance();

    // The language a setting means on a system whose preferred languages are `uiLanguages`
    // (QLocale::uiLanguages(), most preferred first). "system" takes the first of them that is
    // Chinese or English; a system that names neither (another language, the C locale) keeps the
    // Chinese the texts are written in, which is the default.
    static QString resolve(const QString &setting, const QStringList &uiLanguages);

    // Reads the setting and loads its language. Call once, after the application object exists
    // and before the first text is made.
    void applyAtStart();
    // Engines whose bindings are retranslated when the language changes.
    void attachEngine(QQmlEngine *engine);

    QString setting() const;
    void setSetting(const QString &value);
    QString language() const { return m_language; }

Q_SIGNALS:
    void settingChanged();
    // After the translators were swapped: texts made in C++ are to be made again.
    void languageChanged();

private:
    explicit InterfaceLanguage(QObject *parent = nullptr);
    void load(const QString &language);

    QString m_language = QString::fromLatin1(Chinese);
    QList<QTranslator *> m_translators;
    QList<QPointer<QQmlEngine>> m_engines;
};
