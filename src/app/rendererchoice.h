#pragma once

#include <QObject>
#include <QString>

// Which scene graph draws the windows: Qt's default (OpenGL, Metal) or Qt Quick's software one.
// Where the OpenGL that Qt would use is itself drawn in software (Mesa's llvmpipe), the software
// scene graph starts in half the time, needs a third of the memory and does not grow with the
// rows drawn. That is decided from signs that cost nothing, before the first window exists: a GPU
// render node on Linux, the environment that forces Mesa into software, a display on another
// machine. Creating an OpenGL context to read its renderer's name would load the driver, and with
// it the very libraries the choice is meant to spare.
//
// The setting "interfaceRenderer" (auto, hardware, software) overrides the signs from the next
// start on; QT_QUICK_BACKEND or QSG_RHI_BACKEND set by the user overrides both.
class RendererChoice : public QObject
{
    Q_OBJECT
    // The setting as stored: "auto" (default), "hardware" or "software". Written at once, applied
    // at the next start.
    Q_PROPERTY(QString setting READ setting WRITE setSetting NOTIFY settingChanged)
    // The setting this run started with.
    Q_PROPERTY(QString settingAtStart READ settingAtStart CONSTANT)
    // Why this run draws the way it does, for the settings sheet, in the language of the moment.
    Q_PROPERTY(QString reason READ reason NOTIFY reasonChanged)

public:
    static constexpr auto SettingKey = "interfaceRenderer";

    // What the choice looks at. The paths are parameters so that tests can lay out a machine.
    struct Signs
    {
        QString quickBackend; // QT_QUICK_BACKEND
        QString rhiBackend; // QSG_RHI_BACKEND
        QString libglAlwaysSoftware; // LIBGL_ALWAYS_SOFTWARE
        QString galliumDriver; // GALLIUM_DRIVER
        QString display; // DISPLAY
        QString waylandDisplay; // WAYLAND_DISPLAY
        // The first GPU render node this user may open ("/dev/dri/renderD128"), empty for none.
        QString renderNode;
    };

    struct Decision
    {
        bool software = false;
        QString reason;
    };

    // The signs of this process and machine. Render nodes are looked for in `driDir`, and their
    // drivers in `sysDrmDir` (the kernel's view of the same devices).
    static Signs readSigns(const QString &driDir = QStringLiteral("/dev/dri"),
        const QString &sysDrmDir = QStringLiteral("/sys/class/drm"));
    static Decision decide(const QString &setting, const Signs &signs);

    // Reads the setting and the signs, and selects the software scene graph when that is the
    // choice. Call once, after the application object exists and before any window is made.
    static void applyAtStart();

    explicit RendererChoice(QObject *parent = nullptr);

    QString setting() const;
    void setSetting(const QString &value);
    QString settingAtStart() const;
    QString reason() const;

Q_SIGNALS:
    void settingChanged();
    void reasonChanged();
};
