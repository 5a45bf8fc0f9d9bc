#pragma once

#include "app/desktop.h"
#include "app/interfacelanguage.h"
#include "app/rendererchoice.h"
#include "cookies/cookieservice.h"
#include "engine/downloadmanager.h"
#include "model/appstate.h"
#include "model/downloadpreset.h"
#include "model/downloadtask.h"
#include "model/logmodel.h"
#include "model/presetlistmodel.h"
#include "model/taskmodel.h"
#include "model/videoinfo.h"
#include "store/queuememory.h"

#include <QJSEngine>
#include <QQmlEngine>
#include <QtQml/qqmlregistration.h>

// The engine-side objects live in a library that knows nothing of QML; these declarations hand
// their process-wide instances to QML as singletons of the same name.

template <typename T>
T *sharedInstanceForQml(T *instance, QJSEngine *engine)
{
    // The instance outlives every engine: QML must never delete it.
    QJSEngine::setObjectOwnership(instance, QJSEngine::CppOwnership);
    Q_ASSERT(engine->thread() == instance->thread());
    Q_UNUSED(engine);
    return instance;
}

// A fresh instance per engine, owned by it.
struct DesktopForeign
{
    Q_GADGET
    QML_FOREIGN(Desktop)
    QML_NAMED_ELEMENT(Desktop)
    QML_SINGLETON

public:
    static Desktop *create(QQmlEngine *, QJSEngine *) { return new Desktop; }
};

struct RendererChoiceForeign
{
    Q_GADGET
    QML_FOREIGN(RendererChoice)
    QML_NAMED_ELEMENT(RendererChoice)
    QML_SINGLETON

public:
    static RendererChoice *create(QQmlEngine *, QJSEngine *) { return new RendererChoice; }
};

struct InterfaceLanguageForeign
{
    Q_GADGET
    QML_FOREIGN(InterfaceLanguage)
    QML_NAMED_ELEMENT(InterfaceLanguage)
    QML_SINGLETON

public:
    static InterfaceLanguage *create(QQmlEngine *, QJSEngine *engine)
    {
        return sharedInstanceForQml(InterfaceLanguage::instance(), engine);
    }
};

struct AppStateForeign
{
    Q_GADGET
    QML_FOREIGN(AppState)
    QML_NAMED_ELEMENT(AppState)
    QML_SINGLETON

public:
    static AppState *create(QQmlEngine *, QJSEngine *engine)
    {
        return sharedInstanceForQml(AppState::instance(), engine);
    }
};

struct DownloadManagerForeign
{
    Q_GADGET
    QML_FOREIGN(DownloadManager)
    QML_NAMED_ELEMENT(DownloadManager)
    QML_SINGLETON

public:
    static DownloadManager *create(QQmlEngine *, QJSEngine *engine)
    {
        return sharedInstanceForQml(DownloadManager::instance(), engine);
    }
};

struct CookieServiceForeign
{
    Q_GADGET
    QML_FOREIGN(CookieService)
    QML_NAMED_ELEMENT(CookieService)
    QML_SINGLETON

public:
    static CookieService *create(QQmlEngine *, QJSEngine *engine)
    {
        return sharedInstanceForQml(CookieService::instance(), engine);
    }
};

struct QueueMemoryForeign
{
    Q_GADGET
    QML_FOREIGN(QueueMemory)
    QML_NAMED_ELEMENT(QueueMemory)
    QML_SINGLETON

public:
    static QueueMemory *create(QQmlEngine *, QJSEngine *engine)
    {
        return sharedInstanceForQml(QueueMemory::instance(), engine);
    }
};

struct ToolDiscoveryForeign
{
    Q_GADGET
    QML_FOREIGN(ToolDiscovery)
    QML_NAMED_ELEMENT(ToolDiscovery)
    QML_UNCREATABLE("Tool discovery belongs to DownloadManager")
};

struct ToolKeeperForeign
{
    Q_GADGET
    QML_FOREIGN(ToolKeeper)
    QML_NAMED_ELEMENT(ToolKeeper)
    QML_UNCREATABLE("The tool keeper belongs to DownloadManager")
};

struct ToolInstallerForeign
{
    Q_GADGET
    QML_FOREIGN(ToolInstaller)
    QML_NAMED_ELEMENT(ToolInstaller)
    QML_UNCREATABLE("The installer belongs to the tool keeper")
};

// A verdict on one tool as QML reads it: `toolVerdict` properties (text, tint, action).
struct ToolVerdictForeign
{
    Q_GADGET
    QML_FOREIGN(ToolVerdict)
    QML_VALUE_TYPE(toolVerdict)
};

struct TaskModelForeign
{
    Q_GADGET
    QML_FOREIGN(TaskModel)
    QML_NAMED_ELEMENT(TaskModel)
    QML_UNCREATABLE("The task list belongs to DownloadManager")
};

struct LogModelForeign
{
    Q_GADGET
    QML_FOREIGN(LogModel)
    QML_NAMED_ELEMENT(LogModel)
    QML_UNCREATABLE("The log belongs to AppState")
};

struct PresetListModelForeign
{
    Q_GADGET
    QML_FOREIGN(PresetListModel)
    QML_NAMED_ELEMENT(PresetListModel)
};

// A video's information as QML reads it: `videoInfo` properties (title, durationString, …).
struct VideoInfoForeign
{
    Q_GADGET
    QML_FOREIGN(VideoInfo)
    QML_VALUE_TYPE(videoInfo)
};

// DownloadStatus and DownloadPreset for QML: Download.Pending, Download.Custom, …
namespace DownloadEnumsForeign {
Q_NAMESPACE
QML_FOREIGN_NAMESPACE(quillbox)
QML_NAMED_ELEMENT(Download)
} // namespace DownloadEnumsForeign
