#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QObject>

#include <functional>
#include <utility>

// Calls `made` each time a translator is installed in or removed from the application (the
// interface's language changed), for as long as `owner` lives: texts made in C++ are made again.
inline void onLanguageChange(QObject *owner, std::function<void()> made)
{
    class Watcher : public QObject
    {
    public:
        Watcher(QObject *parent, std::function<void()> made)
            : QObject(parent)
            , m_made(std::move(made))
        {
        }
        bool eventFilter(QObject *watched, QEvent *event) override
        {
            if (event->type() == QEvent::LanguageChange && watched == QCoreApplication::instance())
                m_made();
            return false;
        }

    private:
        std::function<void()> m_made;
    };
    if (QCoreApplication *application = QCoreApplication::instance())
        application->installEventFilter(new Watcher(owner, std::move(made)));
}
