// The saved presets against a real store on its own thread: a preset whose first write is still
// out cannot be changed (it would be stored twice), and one the store cannot keep stays for the
// run, is named in storeError, and is tried again when it changes.

#include "views/presenters/savedpresetmodel.h"

#include "engine/downloadmanager.h"
#include "model/appstate.h"
#include "store/queuememory.h"

#include "testsupport.h"

#include <QAbstractItemModelTester>
#include <QtTest>

using namespace Qt::StringLiterals;

class TestSavedPresetModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_env = std::make_unique<IsolatedEnvironment>(); }

    void init()
    {
        m_state = std::make_unique<AppState>();
        m_engine = std::make_unique<DownloadManager>(
            m_state.get(), ToolLocations::standard(m_env->home()), nullptr, DownloadManager::Discovery::WaitForStart);
    }

    // The engine goes before the state it was given.
    void cleanup()
    {
        m_engine.reset();
        m_state.reset();
    }

    void insertIsAwaited()
    {
        AppState &state = *m_state;
        QueueMemory memory(m_engine.get(), &state, m_env->root() + u"/data/quillbox.sqlite"_s);
        SavedPresetModel model(&memory, &state);
        QAbstractItemModelTester tester(&model);
        QTRY_VERIFY(model.isLoaded());

        QCOMPARE(model.add(u"字幕"_s, u"--write-subs"_s), QString());
        const QModelIndex row = model.index(0);
        QVERIFY(row.data(SavedPresetModel::SavingRole).toBool());
        QCOMPARE(model.rename(0, u"新字幕"_s), u"“字幕”正在保存，请稍后再改"_s);
        QCOMPARE(model.remove(0), u"“字幕”正在保存，请稍后再改"_s);
        QTRY_VERIFY(!row.data(SavedPresetModel::SavingRole).toBool());
        const qint64 id = row.data(SavedPresetModel::PresetIdRole).toLongLong();
        QVERIFY(id > 0);

        // Updates go by the id, in order, while earlier ones are still out.
        QCOMPARE(model.rename(0, u"新字幕"_s), QString());
        QCOMPARE(model.setArguments(0, u"--write-subs --embed-subs"_s), QString());
        SavedPresetModel reread(&memory, &state);
        QTRY_COMPARE(reread.rowCount(), 1);
        QCOMPARE(reread.index(0).data(SavedPresetModel::PresetIdRole).toLongLong(), id);
        QCOMPARE(reread.index(0).data(SavedPresetModel::NameRole).toString(), u"新字幕"_s);
        QCOMPARE(reread.index(0).data(SavedPresetModel::ArgumentsRole).toString(), u"--write-subs --embed-subs"_s);
        QCOMPARE(model.storeError(), QString());
        memory.close();
    }

    void storeThatCannotSave()
    {
        // The store's folder is a file: nothing can be opened there.
        const QString blocked = m_env->root() + u"/blocked"_s;
        QFile file(blocked);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        AppState &state = *m_state;
        QueueMemory memory(m_engine.get(), &state, blocked + u"/quillbox.sqlite"_s);
        SavedPresetModel model(&memory, &state);
        QAbstractItemModelTester tester(&model);
        QTRY_VERIFY(model.isLoaded());

        QCOMPARE(model.add(u"音频"_s, u"-x"_s), QString());
        QCOMPARE(model.add(u"视频"_s, u"-f best"_s), QString());
        const QString both = u"未能保存到磁盘：“音频”、“视频”。本次运行中仍可使用，退出后不会保留。"_s;
        QTRY_COMPARE(model.storeError(), both);
        QCOMPARE(model.rowCount(), 2);
        QCOMPARE(model.index(0).data(SavedPresetModel::PresetIdRole).toLongLong(), 0);

        // A change is written again, and fails again; a removed one is no longer named.
        QCOMPARE(model.setArguments(0, u"-x --audio-format mp3"_s), QString());
        QVERIFY(model.index(0).data(SavedPresetModel::SavingRole).toBool());
        QTRY_VERIFY(!model.index(0).data(SavedPresetModel::SavingRole).toBool());
        QCOMPARE(model.storeError(), both);
        QCOMPARE(model.remove(1), QString());
        QCOMPARE(model.storeError(), u"未能保存到磁盘：“音频”。本次运行中仍可使用，退出后不会保留。"_s);
        QCOMPARE(model.remove(0), QString());
        QCOMPARE(model.storeError(), QString());
        memory.close();
    }

private:
    std::unique_ptr<IsolatedEnvironment> m_env;
    std::unique_ptr<AppState> m_state;
    std::unique_ptr<DownloadManager> m_engine;
};

QTEST_GUILESS_MAIN(TestSavedPresetModel)

#include "tst_savedpresetmodel.moc"
