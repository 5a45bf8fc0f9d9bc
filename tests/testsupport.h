#pragma once

#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

// Points the settings store and the home directory at a fresh temporary directory, so a test
// never reads or writes the user's own. Create it before anything touches QSettings.
class IsolatedEnvironment
{
public:
    IsolatedEnvironment()
    {
        if (!m_dir.isValid())
            qFatal("cannot create a temporary directory");
        QCoreApplication::setOrganizationName(QStringLiteral("QuillboxTests"));
        QCoreApplication::setApplicationName(QStringLiteral("QuillboxTests"));
        const QString settingsDir = m_dir.filePath(QStringLiteral("settings"));
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settingsDir);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settingsDir);
        QDir(m_dir.path()).mkpath(QStringLiteral("home"));
        qputenv("HOME", home().toUtf8());
        // The per-user data folder, where the queue is stored.
        qputenv("XDG_DATA_HOME", m_dir.filePath(QStringLiteral("data")).toUtf8());
    }

    QString root() const { return m_dir.path(); }
    QString home() const { return m_dir.filePath(QStringLiteral("home")); }

    static void clearSettings() { QSettings().clear(); }

private:
    QTemporaryDir m_dir;
};
