#pragma once

#include "model/logentry.h"

#include <QObject>
#include <QString>
#include <QUuid>

#include <concepts>
#include <cstddef>

// Where the engine writes its in-app log lines. A QObject, so that work that may outlive it
// (a video-information fetch) can tell when it has gone.
class LogSink : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // Callable from any thread; returns at once.
    virtual void addLog(const QString &message, LogEntry::LogType type) = 0;
    // The same, for a line that redraws the one last logged with `redraws`.
    virtual void addLog(const QString &message, LogEntry::LogType type, const QUuid &redraws) = 0;
};

// Where downloads and checks take cookies from: "none", "file" (then cookiePath()) or a browser.
class CookieSettings
{
public:
    virtual QString cookieSource() const = 0;
    virtual QString cookiePath() const = 0;

protected:
    ~CookieSettings() = default;
};

// All the engine needs of the application: its log and its cookie settings. Either may be null
// (a test, a benchmark): nothing is logged, and cookies come from the default browser.
struct EngineHost
{
    LogSink *log = nullptr;
    const CookieSettings *cookies = nullptr;

    EngineHost(std::nullptr_t) { }
    EngineHost(LogSink *log, const CookieSettings *cookies)
        : log(log)
        , cookies(cookies)
    {
    }
    // Anything that is both, such as the application's state.
    template <typename Host>
    requires std::derived_from<Host, LogSink> && std::derived_from<Host, CookieSettings> EngineHost(Host *host)
        : log(host)
        , cookies(host)
    {
    }

    // The application's own: its state, which keeps the in-app log and the form's cookie choice.
    static EngineHost processWide();
};
