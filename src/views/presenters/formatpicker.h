#pragma once

#include "model/videoinfo.h"

#include <QAbstractListModel>
#include <QList>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

class AppState;
class DownloadManager;
class VideoInfoFetch;

// The formats of one video as a table to choose from: one combined format, or one video-only and
// one audio-only format (either alone too). apply() makes the choice the custom preset's
// arguments, "-f ID" or "-f VIDEO+AUDIO".
class FormatPicker : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY loadingChanged)
    // Why there is no table (the information could not be fetched, or lists no format).
    Q_PROPERTY(QString errorText READ errorText NOTIFY errorTextChanged)
    // "-f 5+1" for the rows chosen; empty while none is.
    Q_PROPERTY(QString arguments READ arguments NOTIFY selectionChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    // What the ✓ of the rows means for the compatibility chosen in "下载选项"; empty when none is.
    Q_PROPERTY(QString outcomeHint READ outcomeHint NOTIFY outcomeHintChanged)

public:
    enum class Kind { Combined, VideoOnly, AudioOnly, Other };
    Q_ENUM(Kind)

    enum Role {
        FormatIdRole = Qt::UserRole + 1,
        ExtRole,
        ResolutionRole,
        FpsRole, // "29.97", or empty
        CodecsRole, // the codecs that are there: "avc1.4d401f", "avc1 + mp4a.40.2", or empty
        SizeRole, // "1.18MiB", "≈1.18MiB" (yt-dlp's estimate), "~1.18MiB" (bitrate × duration), or empty
        NoteRole,
        KindRole,
        SelectedRole,
        FitsRole, // the format fits the compatibility chosen in "下载选项"
    };
    Q_ENUM(Role)

    // Bound to the process-wide AppState and DownloadManager.
    explicit FormatPicker(QObject *parent = nullptr);
    FormatPicker(AppState *state, DownloadManager *downloads, QObject *parent = nullptr);
    ~FormatPicker() override;

    bool isLoading() const { return !m_fetch.isNull(); }
    QString errorText() const { return m_errorText; }
    QString arguments() const;
    int count() const { return int(m_formats.size()); }

    // Fetches the formats of `url` (the form's cookie switch) and shows them; the table empties
    // meanwhile.
    Q_INVOKABLE void fetch(const QString &url);
    // The formats of a video `duration` seconds long (0: not known).
    void setFormats(const QList<VideoFormat> &formats, qint64 duration = 0);
    // Chooses the row, or unchooses it when chosen. A combined format replaces the whole choice;
    // a video-only or audio-only format replaces the combined one and the other of its kind.
    Q_INVOKABLE void toggle(int row);
    // Selects the custom preset with arguments(); false, changing nothing, while nothing is chosen.
    Q_INVOKABLE bool apply();
    // What to ask before apply() replaces custom arguments the user wrote (secrets masked); empty
    // when there are none, or they are the choice already.
    Q_INVOKABLE QString replaceQuestion() const;

    static Kind kindOf(const VideoFormat &format);
    // Per format, whether it fits `outcome` (DownloadChoices::compatibility): for "everywhere"
    // every H.264/AAC format in MP4 or M4A; for "quality" and "smallest" the format with video
    // the sorting puts first, and the audio it would be joined with. None for "any".
    static QList<bool> fitting(const QList<VideoFormat> &formats, const QString &outcome, qint64 duration);
    QString outcomeHint() const;
    // Bytes in binary units as yt-dlp writes them: "512.00B", "1.18MiB".
    static QString sizeText(qint64 bytes);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void loadingChanged();
    void errorTextChanged();
    void selectionChanged();
    void countChanged();
    void outcomeHintChanged();

private:
    void setErrorText(const QString &text);
    void select(const QList<int> &rows);
    void refit();

    QPointer<AppState> m_state;
    QPointer<DownloadManager> m_downloads;
    QPointer<VideoInfoFetch> m_fetch;
    QList<VideoFormat> m_formats;
    QList<int> m_selected; // a video-only row before an audio-only one
    QList<bool> m_fits;
    qint64 m_duration = 0;
    QString m_errorText;
};
