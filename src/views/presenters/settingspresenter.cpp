#include "settingspresenter.h"

#include "app/commandline.h"
#include "engine/downloadmanager.h"
#include "engine/shellrunner.h"

#include <QSettings>

using namespace Qt::StringLiterals;

SettingsPresenter::SettingsPresenter(QObject *parent)
    : SettingsPresenter(DownloadManager::instance(), parent)
{
}

SettingsPresenter::SettingsPresenter(DownloadManager *downloads, QObject *parent)
    : QObject(parent)
    , m_downloads(downloads)
{
}

void SettingsPresenter::verifyPath(const QString &path)
{
    if (++m_checks == 1)
        Q_EMIT isCheckingChanged();
    runShellCommand(
        ShellCommand(path, { u"--version"_s }).syntax(u"2>&1"_s), PipeMode::Shared, this,
        [this](const ShellResult &) {
            if (--m_checks == 0)
                Q_EMIT isCheckingChanged();
        },
        DownloadManager::ProbeTimeoutMs);
}

void SettingsPresenter::updateYtDlp()
{
    if (!m_downloads)
        return;
    setUpdating(true);
    setUpdateResult(tr("正在更新..."));
    m_downloads->updateYtDlp([self = QPointer(this)](const UpdateResult &result) {
        if (!self)
            return;
        self->m_updateOk = result.upToDate;
        self->setUpdating(false);
        self->setUpdateResult(result.text, result.advice);
    });
}

void SettingsPresenter::repair(quillbox::ToolAction action)
{
    if (!m_downloads)
        return;
    switch (action) {
    case quillbox::ToolAction::InstallYtDlp:
        m_downloads->keeper()->installYtDlp();
        break;
    case quillbox::ToolAction::UpdateYtDlp:
        updateYtDlp();
        break;
    case quillbox::ToolAction::InstallDeno:
        m_downloads->keeper()->installDeno();
        break;
    case quillbox::ToolAction::CopyFfmpegCommand: // the sheet copies it (Desktop)
    case quillbox::ToolAction::OpenSettings:
    case quillbox::ToolAction::None:
        break;
    }
}

void SettingsPresenter::resetToAutoDetect()
{
    if (m_downloads)
        m_downloads->resetYtDlpPath();
    else
        QSettings().remove(QLatin1String(DownloadManager::CustomYtDlpPathKey));
}

void SettingsPresenter::setUpdating(bool value)
{
    if (m_isUpdating == value)
        return;
    m_isUpdating = value;
    Q_EMIT isUpdatingChanged();
}

void SettingsPresenter::setUpdateResult(const QString &value, const QString &advice)
{
    if (m_updateResult == value && m_updateAdvice == advice)
        return;
    m_updateResult = value;
    m_updateAdvice = advice;
    Q_EMIT updateResultChanged();
}

QString SettingsPresenter::bookmarklet()
{
    return quillboxBookmarklet();
}
