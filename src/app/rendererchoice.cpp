#include "app/rendererchoice.h"

#include "model/languagechange.h"
#include "model/logcategories.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <QSettings>

#include <optional>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {
const QString Auto = u"auto"_s;
const QString Hardware = u"hardware"_s;
const QString Software = u"software"_s;

// What this run decided at start (applyAtStart).
QString &startSetting()
{
    static QString setting = Auto;
    return setting;
}

// The signs this run decided by, kept so that the reason can be said again in another language.
std::optional<RendererChoice::Signs> &startSigns()
{
    static std::optional<RendererChoice::Signs> signs;
    return signs;
}

QString storedSetting()
{
    const QString value = QSettings().value(QLatin1String(RendererChoice::SettingKey)).toString();
    return value == Hardware || value == Software ? value : Auto;
}

// Mesa reads its switches this way: 1, true, yes or y, in any case.
bool mesaTrue(const QString &value)
{
    const QString v = value.trimmed().toLower();
    return v == "1"_L1 || v == "true"_L1 || v == "yes"_L1 || v == "y"_L1;
}

// Drivers whose render node has no GPU behind it: virtual or display-only devices, which Mesa
// serves with llvmpipe all the same.
bool softwareOnlyDriver(const QString &drmDir)
{
    const QString driver = QFileInfo(drmDir + "/device/driver"_L1).symLinkTarget().section(u'/', -1);
    static const QStringList displayOnly { u"vgem"_s, u"vkms"_s, u"evdi"_s, u"udl"_s };
    if (displayOnly.contains(driver))
        return true;
    // A virtual GPU draws in hardware only with its 3D feature (bit 0 of the virtio features).
    if (driver == "virtio_gpu"_L1) {
        QFile features(drmDir + "/device/features"_L1);
        return features.open(QIODevice::ReadOnly) && features.read(1) == "0";
    }
    return false;
}
} // namespace

RendererChoice::Signs RendererChoice::readSigns(const QString &driDir, const QString &sysDrmDir)
{
    Signs signs {
        .quickBackend = qEnvironmentVariable("QT_QUICK_BACKEND"),
        .rhiBackend = qEnvironmentVariable("QSG_RHI_BACKEND"),
        .libglAlwaysSoftware = qEnvironmentVariable("LIBGL_ALWAYS_SOFTWARE"),
        .galliumDriver = qEnvironmentVariable("GALLIUM_DRIVER"),
        .display = qEnvironmentVariable("DISPLAY"),
        .waylandDisplay = qEnvironmentVariable("WAYLAND_DISPLAY"),
        .renderNode = {},
    };
    const QDir dri(driDir);
    for (const QString &name : dri.entryList({ u"renderD*"_s }, QDir::System | QDir::Files, QDir::Name)) {
        const QString path = dri.filePath(name);
        if (::access(QFile::encodeName(path).constData(), R_OK | W_OK) == 0
            && !softwareOnlyDriver(sysDrmDir + u'/' + name)) {
            signs.renderNode = path;
            break;
        }
    }
    return signs;
}

RendererChoice::Decision RendererChoice::decide(const QString &setting, const Signs &signs)
{
    if (!signs.quickBackend.isEmpty())
        return { signs.quickBackend == Software, tr("环境变量 QT_QUICK_BACKEND=%1").arg(signs.quickBackend) };
    if (!signs.rhiBackend.isEmpty())
        return { false, tr("环境变量 QSG_RHI_BACKEND=%1").arg(signs.rhiBackend) };
    if (setting == Hardware)
        return { false, tr("设置为硬件加速") };
    if (setting == Software)
        return { true, tr("设置为软件") };
#ifdef Q_OS_MACOS
    Q_UNUSED(signs);
    return { false, tr("自动：macOS 用 Metal 绘制") };
#else
    if (mesaTrue(signs.libglAlwaysSoftware))
        return { true, tr("自动：LIBGL_ALWAYS_SOFTWARE 让 OpenGL 在软件中运行") };
    static const QStringList softwareDrivers { u"llvmpipe"_s, u"softpipe"_s, u"swr"_s };
    if (softwareDrivers.contains(signs.galliumDriver.trimmed().toLower()))
        return { true, tr("自动：GALLIUM_DRIVER=%1 是软件 OpenGL").arg(signs.galliumDriver) };
    // An X display with a host part ("localhost:10.0" of ssh -X) is on another machine, whose
    // OpenGL reaches us, if at all, through the network.
    const QString host = signs.display.section(u':', 0, 0);
    if (signs.waylandDisplay.isEmpty() && !host.isEmpty() && host != "unix"_L1)
        return { true, tr("自动：窗口显示在另一台机器上（DISPLAY=%1）").arg(signs.display) };
    if (signs.renderNode.isEmpty())
        return { true, tr("自动：没有可用的 GPU 渲染设备（/dev/dri/renderD*）") };
    return { false, tr("自动：找到 GPU 渲染设备 %1").arg(signs.renderNode) };
#endif
}

void RendererChoice::applyAtStart()
{
    startSetting() = storedSetting();
    startSigns() = readSigns();
    const Decision decision = decide(startSetting(), *startSigns());
    // Only when the environment does not name a backend: Qt lets this call override it.
    if (decision.software && qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND"))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    qCInfo(lcUi).noquote() << "scene graph:" << (decision.software ? "software" : "Qt's default") << "-"
                           << decision.reason;
}

RendererChoice::RendererChoice(QObject *parent)
    : QObject(parent)
{
    onLanguageChange(this, [this] { Q_EMIT reasonChanged(); });
}

QString RendererChoice::setting() const
{
    return storedSetting();
}

void RendererChoice::setSetting(const QString &value)
{
    const QString normal = value == Hardware || value == Software ? value : Auto;
    if (normal == storedSetting())
        return;
    QSettings().setValue(QLatin1String(SettingKey), normal);
    Q_EMIT settingChanged();
}

QString RendererChoice::settingAtStart() const
{
    return startSetting();
}

QString RendererChoice::reason() const
{
    // Without applyAtStart (a test's window), what it would have said. Said afresh each time, in the
    // interface's language.
    if (!startSigns())
        startSigns() = readSigns();
    return decide(startSetting(), *startSigns()).reason;
}
