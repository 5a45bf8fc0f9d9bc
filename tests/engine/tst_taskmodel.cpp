#include "model/taskmodel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QtTest>

#include <limits>

using namespace Qt::StringLiterals;

class TestTaskModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void percentText_data();
    void percentText();
    void details_data();
    void details();
    void updatesSignalOneRowAndItsRoles();
    void countersFollowStatus();
};

void TestTaskModel::percentText_data()
{
    QTest::addColumn<double>("progress");
    QTest::addColumn<QString>("text");
    QTest::newRow("0.999 is not rounded up") << 0.999 << u"99%"_s;
    QTest::newRow("29.0% parsed") << 29.0 / 100.0 << u"29%"_s;
    QTest::newRow("past 1 reads 100") << 1e18 << u"100%"_s;
    QTest::newRow("below 0 reads 0") << -0.5 << u"0%"_s;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << u"0%"_s;
}

void TestTaskModel::percentText()
{
    QFETCH(double, progress);
    QTEST(TaskModel::percentText(progress), "text");
}

void TestTaskModel::details_data()
{
    QTest::addColumn<QStringList>("parts"); // duration, speed, size, eta
    QTest::addColumn<QString>("text");
    QTest::newRow("all") << QStringList { u"3:25"_s, u"1.00MiB/s"_s, u"10.00MiB"_s, u"00:31"_s }
                         << u"3:25 • 1.00MiB/s • 10.00MiB • 剩余 00:31"_s;
    QTest::newRow("gaps leave no empty part")
        << QStringList { QString(), u"1.00MiB/s"_s, QString(), u"00:31"_s } << u"1.00MiB/s • 剩余 00:31"_s;
    QTest::newRow("size alone") << QStringList { QString(), QString(), u"10.00MiB"_s, QString() } << u"10.00MiB"_s;
    QTest::newRow("nothing") << QStringList { QString(), QString(), QString(), QString() } << QString();
}

void TestTaskModel::details()
{
    QFETCH(QStringList, parts);
    DownloadTask task = DownloadTask::create(u"u"_s);
    task.duration = parts.at(0);
    task.speed = parts.at(1);
    task.size = parts.at(2);
    task.eta = parts.at(3);
    QTEST(TaskModel::details(task), "text");
}

void TestTaskModel::updatesSignalOneRowAndItsRoles()
{
    TaskModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.appendAll({ DownloadTask::create(u"a"_s), DownloadTask::create(u"b"_s), DownloadTask::create(u"c"_s) });
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    const QUuid second = model.tasks().at(1).id;

    QVERIFY(model.update(second, [](DownloadTask &task) { task.progress = 0.5; }));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).toModelIndex().row(), 1);
    QCOMPARE(changed.at(0).at(1).toModelIndex().row(), 1);
    const auto roles = changed.at(0).at(2).value<QList<int>>();
    QCOMPARE(roles, QList<int>({ TaskModel::ProgressRole, TaskModel::PercentTextRole }));

    // No change, no signal; an unknown task is reported, not invented.
    QVERIFY(model.update(second, [](DownloadTask &task) { task.progress = 0.5; }));
    QCOMPARE(changed.count(), 1);
    QVERIFY(!model.update(QUuid::createUuid(), [](DownloadTask &task) { task.progress = 1; }));

    QVERIFY(model.update(second, [](DownloadTask &task) { task.status = DownloadStatus::Failed; }));
    const auto statusRoles = changed.at(1).at(2).value<QList<int>>();
    QVERIFY(statusRoles.contains(TaskModel::StatusLabelRole) && statusRoles.contains(TaskModel::ShowsProgressRole));
}

void TestTaskModel::countersFollowStatus()
{
    TaskModel model;
    QSignalSpy downloading(&model, &TaskModel::hasDownloadingChanged);
    model.appendAll({ DownloadTask::create(u"a"_s), DownloadTask::create(u"b"_s) });
    const QUuid a = model.tasks().at(0).id;
    const QUuid b = model.tasks().at(1).id;
    const auto set = [&model](const QUuid &id, DownloadStatus status) {
        model.update(id, [status](DownloadTask &task) { task.status = status; });
    };
    set(a, DownloadStatus::Downloading);
    set(b, DownloadStatus::Downloading);
    QVERIFY(model.hasDownloading());
    set(a, DownloadStatus::Completed);
    QVERIFY(model.hasDownloading());
    set(b, DownloadStatus::Cancelled);
    QVERIFY(!model.hasDownloading());
    QCOMPARE(downloading.count(), 2);
    QCOMPARE(model.completedCount(), 1);
    QCOMPARE(model.count(), 2);
}

QTEST_GUILESS_MAIN(TestTaskModel)
#include "tst_taskmodel.moc"
