#pragma once

#include "model/enums.h"
#include <QObject>
#include <QPointer>
#include <QString>

#include <QtQml/qqmlregistration.h>

class DownloadManager;

// What the settings sheet does besides binding to the engine: probes a typed yt-dlp path, runs
// the update and keeps its result, and puts tool discovery back to automatic. Built with the
// sheet, so every opening starts from nothing checked and nothing updated.
class SettingsPresenter : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool isChecking READ isChecking NOTIFY isCheckingChanged)
    // The bookmark that sends the browser's page to Quillbox.
    Q_PROPERTY(QString bookmarklet READ bookmarklet CONSTANT)
    Q_PROPERTY(bool isUpdating READ isUpdating NOTIFY isUpdatingChanged)
    Q_PROPERTY(QString updateResult READ updateResult NOTIFY updateResultChanged)
    Q_PROPERTY(QString updateAdvice READ updateAdvice NOTIFY updateResultChanged)
    Q_PROPERTY(quillbox::Tint updateResultTint READ updateResultTint NOTIFY updateResultChanged)

public:
    // Bound to the process-wide DownloadManager.
    explicit SettingsPresenter(QObject *parent = nullptr);
    explicit SettingsPresenter(DownloadManager *downloads, QObject *parent = nullptr);

    bool isChecking() const { return m_checks > 0; }
    bool isUpdating() const { return m_isUpdating; }
    QString updateResult() const { return m_updateResult; }
    QString updateAdvice() const { return m_updateAdvice; }
    // Orange while an update runs; then green when the newest yt-dlp is in place, red otherwise.
    Tint updateResultTint() const { return m_isUpdating ? Tint::Orange : (m_updateOk ? Tint::Green : Tint::Red); }

    // Runs `path --version` through the shell. Only isChecking shows it: the answer is neither
    // shown nor stored.
    static QString bookmarklet();
    Q_INVOKABLE void verifyPath(const QString &path);
    // Updates yt-dlp; updateResult says "正在更新..." until the engine's answer replaces it.
    // Pressing again while one runs starts another.
    Q_INVOKABLE void updateYtDlp();
    // Carries out the action a tool's verdict offers: installing or updating.
    Q_INVOKABLE void repair(quillbox::ToolAction action);
    // Forgets the stored custom path and looks for yt-dlp again, using what it finds at once.
    Q_INVOKABLE void resetToAutoDetect();

Q_SIGNALS:
    void isCheckingChanged();
    void isUpdatingChanged();
    void updateResultChanged();

private:
    void setUpdating(bool value);
    void setUpdateResult(const QString &value, const QString &advice = {});

    QPointer<DownloadManager> m_downloads;
    int m_checks = 0;
    bool m_isUpdating = false;
    QString m_updateResult;
    QString m_updateAdvice;
    bool m_updateOk = false;
};
