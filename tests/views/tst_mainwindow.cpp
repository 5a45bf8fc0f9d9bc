#include "app/applifecycle.h"
#include "app/interfacelanguage.h"
#include "app/qmlsetup.h"
#include "app/rendererchoice.h"
#include "model/appstate.h"
#include "model/taskmodel.h"

#include "testsupport.h"

#include <QGuiApplication>
#include <QMimeData>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQmlExpression>
#include <QQmlListReference>
#include <QQuickItem>
#include <QQuickWindow>
#include <QScreen>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtQml/qqmlextensionplugin.h>
#include <QtTest>

Q_IMPORT_QML_PLUGIN(QuillboxPlugin)

using namespace Qt::StringLiterals;

class TestMainWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("QUILLBOX_NO_BROWSER", "1"); }
    void init() { IsolatedEnvironment::clearSettings(); }
    void geometryRestored();
    void unusableGeometryIgnored_data();
    void unusableGeometryIgnored();
    void menusAsDesigned();
    void menuKeysDoWhatTheySay();
    void undoBringsBackClearedLinks();
    void dropsAddLinks_data();
    void dropsAddLinks();
    void qtTextsAreChinese();
    void languageFollowsTheSystem_data();
    void languageFollowsTheSystem();
    void switchesToEnglishAtOnce();
    void rendererChosen_data();
    void rendererChosen();
    void renderNodesFound();

private:
    IsolatedEnvironment m_env;
};

namespace {
// Main.qml loaded and handed to the application's lifecycle, as main() does.
struct MainWindow
{
    QQmlApplicationEngine engine;
    QQuickWindow *window = nullptr;
    AppLifecycle lifecycle { nullptr };

    // `active`: shown, exposed and given the keyboard.
    explicit MainWindow(bool active = false)
    {
        setupQmlEngine(engine);
        engine.load(QUrl(u"qrc:/qt/qml/Quillbox/Main.qml"_s));
        window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
        if (!window)
            qFatal("Main.qml did not load");
        lifecycle.attachMainWindow(window);
        if (active) {
            if (!QTest::qWaitForWindowExposed(window))
                qFatal("the window was not shown");
            window->requestActivate();
            if (!QTest::qWaitForWindowActive(window))
                qFatal("the window did not become active");
        }
    }

    void click(QQuickItem *item) const
    {
        QTest::mouseClick(
            window, Qt::LeftButton, {}, item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint());
    }

    QObject *menu(int index) const
    {
        return QQmlListReference(window->property("menuBar").value<QObject *>(), "menus").at(index);
    }

    // Opens `menu` and returns its entries, which it makes as it opens.
    static QList<QQuickItem *> openMenu(QObject *menu)
    {
        QMetaObject::invokeMethod(menu, "open");
        if (!QTest::qWaitFor([menu] { return menu->property("opened").toBool(); }))
            qFatal("the menu did not open");
        QList<QQuickItem *> entries;
        for (int at = 0; at < menu->property("count").toInt(); ++at) {
            QQuickItem *entry = nullptr;
            QMetaObject::invokeMethod(menu, "itemAt", Q_RETURN_ARG(QQuickItem *, entry), Q_ARG(int, at));
            entries << entry;
        }
        return entries;
    }
};
} // namespace

void TestMainWindow::geometryRestored()
{
    const QRect moved(40, 30, 1000, 700);
    {
        const MainWindow main(true);
        main.window->setGeometry(moved);
        // Closing, here by its key equivalent, keeps the frame for the next start.
        QTest::keyClick(main.window, Qt::Key_W, Qt::ControlModifier);
        QTRY_VERIFY(!main.window->isVisible());
    }
    QCOMPARE(MainWindow().window->geometry(), moved);
}

// With nothing usable stored, the window opens at its designed size in the middle of the screen.
void TestMainWindow::unusableGeometryIgnored_data()
{
    QTest::addColumn<QRect>("stored");
    QTest::newRow("nothing stored") << QRect();
    QTest::newRow("off every screen") << QRect(-50000, -50000, 1000, 700);
    QTest::newRow("below the minimum") << QRect(10, 10, 300, 200);
}

void TestMainWindow::unusableGeometryIgnored()
{
    QFETCH(QRect, stored);
    if (stored.isValid())
        QSettings().setValue(u"Main Window/geometry"_s, stored);
    const MainWindow main;
    QVERIFY(main.window->isVisible());
    QCOMPARE(main.window->size(), QSize(1200, 800));
    // Within the few pixels a window frame may add.
    const QPoint offset = main.window->geometry().center() - main.window->screen()->availableGeometry().center();
    QVERIFY2(offset.manhattanLength() <= 8, qPrintable(u"%1,%2"_s.arg(offset.x()).arg(offset.y())));
}

// Each menu as "title: entry, entry | entry", a separator as "|" and a disabled entry in
// brackets.
void TestMainWindow::menusAsDesigned()
{
    const MainWindow main(true);
    QStringList menus;
    QQuickItem *aboutItem = nullptr;
    for (int i = 0; i < 4; ++i) {
        QObject *menu = main.menu(i);
        QString text = menu->property("title").toString() + u':';
        for (QQuickItem *entry : MainWindow::openMenu(menu)) {
            const QString label = entry->property("text").toString();
            if (label.isEmpty()) {
                text += u" |"_s;
                continue;
            }
            text += entry->isEnabled() ? QString(u' ' + label) : QString(u" ["_s + label + u']');
            // The key equivalent as the entry shows it.
            auto *keys = entry->findChild<QQuickItem *>(u"menuItemKeys"_s);
            if (keys && keys->isVisible())
                text += u'(' + keys->property("text").toString() + u')';
            if (label == u"关于 Quillbox"_s)
                aboutItem = entry;
        }
        menus << text;
        QVERIFY(QMetaObject::invokeMethod(menu, "close"));
        QTRY_VERIFY(!menu->property("visible").toBool());
    }
    QCOMPARE(menus,
        QStringList({ u"Quillbox: 关于 Quillbox | 偏好设置...(Ctrl+,) | 退出 Quillbox(Ctrl+Q)"_s,
            u"文件: 新建下载任务(Ctrl+N) 从文件导入链接…(Ctrl+O) | 关闭窗口(Ctrl+W)"_s,
            u"编辑: 撤销(Ctrl+Z) 重做(Ctrl+Shift+Z) | 剪切(Ctrl+X) 复制(Ctrl+C) 粘贴(Ctrl+V) 全选(Ctrl+A)"_s,
            u"窗口: 最小化(Ctrl+M) 缩放 | 全部置于顶层"_s }));

    // Opening a menu again, as a person does, does not add its entries twice; and
    // "关于 Quillbox" opens the About panel, made on that first use.
    QQuickItem *title = nullptr;
    QVERIFY(QMetaObject::invokeMethod(main.window->property("menuBar").value<QObject *>(), "itemAt",
        Q_RETURN_ARG(QQuickItem *, title), Q_ARG(int, 0)));
    main.click(title);
    QTRY_VERIFY(main.menu(0)->property("opened").toBool());
    QCOMPARE(main.menu(0)->property("count").toInt(), 5);
    QVERIFY(aboutItem);
    main.click(aboutItem);
    auto *about = main.window->findChild<QObject *>(u"aboutDialog"_s);
    QVERIFY(about);
    QTRY_VERIFY(about->property("opened").toBool());

    // Its home page opens in the browser.
    auto *link = about->findChild<QQuickItem *>(u"homePageLink"_s);
    QVERIFY(link);
    QVERIFY(link->property("text").toString().startsWith(u"https://"_s));
    QObject *desktop = QQmlExpression(qmlContext(about), about, u"Desktop"_s).evaluate().value<QObject *>();
    QVERIFY(desktop);
    QSignalSpy opened(desktop, SIGNAL(urlOpened(QUrl)));
    main.click(link);
    QCOMPARE(opened.count(), 1);
    QCOMPARE(opened.at(0).at(0).toUrl().toString(), link->property("text").toString());
    QTest::keyClick(main.window, Qt::Key_Return);
    QTRY_VERIFY(!about->property("opened").toBool());
}

// "偏好设置..." opens the settings; "新建下载任务" shows the download page, ready to type links.
void TestMainWindow::menuKeysDoWhatTheySay()
{
    const MainWindow main(true);
    AppState *state = AppState::instance();
    QTest::keyClick(main.window, Qt::Key_Comma, Qt::ControlModifier);
    QTRY_VERIFY(state->showSettings());
    state->setShowSettings(false);
    state->setUrlInput(QString());
    state->setSelectedTab(1);
    QTest::keyClick(main.window, Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(state->selectedTab(), 0);
    QTest::keyClick(main.window, 'x');
    QCOMPARE(state->urlInput(), u"x"_s);
}

// "清空" is an edit of the links, so the edit menu's "撤销" brings them back.
void TestMainWindow::dropsAddLinks_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("links");
    QTest::addColumn<QString>("log");

    QTest::newRow("text on the links box")
        << u"text"_s << u"linksEditor"_s << u"https://a.example/1\nhttps://b.example/2"_s
        << u"从拖放收到 2 个链接（未采用：1 行不是链接）"_s;
    QTest::newRow("URL list beside the box")
        << u"urls"_s << u"startButton"_s << u"https://a.example/1\nhttps://b.example/2"_s << u"从拖放收到 2 个链接"_s;
    QTest::newRow("text file with one 10 MB line")
        << u"file"_s << u"linksEditor"_s << u"https://a.example/1\nhttps://b.example/2"_s
        << u"从拖放收到 2 个链接（未采用：1 行过长）"_s;
    QTest::newRow("an option is text") << u"optionText"_s << u"linksEditor"_s << QString()
                                       << u"从拖放收到 0 个链接（未采用：1 行不是链接）"_s;
}

// A drag from another program, entered, moved over and dropped where a person would let go.
void TestMainWindow::dropsAddLinks()
{
    QFETCH(QString, kind);
    QFETCH(QString, target);
    QFETCH(QString, links);
    QFETCH(QString, log);

    const MainWindow main(true);
    AppState::instance()->setUrlInput({});
    QTemporaryDir dir;
    QMimeData data;
    if (kind == u"text") {
        data.setText(u"https://a.example/1\nnot a link\nhttps://b.example/2"_s);
    } else if (kind == u"urls") {
        data.setUrls({ QUrl(u"https://a.example/1"_s), QUrl(u"https://b.example/2"_s) });
    } else if (kind == u"file") {
        QFile file(dir.filePath(u"links.txt"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("https://a.example/1\n" + QByteArray(10 * 1024 * 1024, 'x') + "\nhttps://b.example/2\n");
        file.close();
        data.setUrls({ QUrl::fromLocalFile(file.fileName()) });
    } else {
        data.setText(u"--exec 'rm -rf ~'"_s);
    }

    auto *item = main.window->findChild<QQuickItem *>(target);
    QVERIFY(item);
    const QPoint at = item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint();
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(main.window, &enter);
    QVERIFY(enter.isAccepted());
    QDragMoveEvent move(at, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(main.window, &move);
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(main.window, &drop);
    QVERIFY(drop.isAccepted());

    QCOMPARE(AppState::instance()->urlInput(), links);
    // The log is written on the next turn of the event loop.
    const auto lastLog = [] {
        const QList<LogEntry> entries = AppState::instance()->logEntries();
        return entries.isEmpty() ? QString() : entries.constLast().message;
    };
    QTRY_COMPARE(lastLog(), log);
}

void TestMainWindow::undoBringsBackClearedLinks()
{
    const MainWindow main(true);
    const QString links = u"https://a.example/1\nhttps://b.example/2"_s;
    AppState::instance()->setUrlInput(links);
    auto *clear = main.window->findChild<QQuickItem *>(u"clearButton"_s);
    QVERIFY(clear);
    main.click(clear);
    QCOMPARE(AppState::instance()->urlInput(), QString());

    QObject *editMenu = main.menu(2);
    QQuickItem *undo = MainWindow::openMenu(editMenu).value(0);
    QCOMPARE(undo->property("text").toString(), u"撤销"_s);
    // The menu lays out its entries, made as it opens, on the next frame.
    QTRY_VERIFY(editMenu->property("height").toReal() > 4 * undo->height());
    main.click(undo);
    QTRY_COMPARE(AppState::instance()->urlInput(), links);
}

// Qt's own buttons (the folder dialog's, the About panel's) and the labels of the file dialog Qt
// draws itself (which its catalogues lack) read in Chinese, whatever the locale.
void TestMainWindow::qtTextsAreChinese()
{
    InterfaceLanguage::instance()->applyAtStart();
    QCOMPARE(QCoreApplication::translate("QPlatformTheme", "Cancel"), u"取消"_s);
    QCOMPARE(QCoreApplication::translate("FileDialog", "Filter"), u"文件类型"_s);
}

void TestMainWindow::languageFollowsTheSystem_data()
{
    QTest::addColumn<QString>("setting");
    QTest::addColumn<QStringList>("system");
    QTest::addColumn<QString>("language");
    QTest::newRow("Chinese system") << u"system"_s << QStringList { u"zh-CN"_s, u"zh-Hans-CN"_s } << u"zh_CN"_s;
    QTest::newRow("English system") << u"system"_s << QStringList { u"en-GB"_s, u"en"_s } << u"en"_s;
    QTest::newRow("German, then Chinese") << u"system"_s << QStringList { u"de-DE"_s, u"zh-TW"_s } << u"zh_CN"_s;
    QTest::newRow("German only") << u"system"_s << QStringList { u"de-DE"_s, u"de"_s } << u"zh_CN"_s;
    QTest::newRow("the C locale names none") << u"system"_s << QStringList { u"C"_s } << u"zh_CN"_s;
    QTest::newRow("chosen English") << u"en"_s << QStringList { u"zh-CN"_s } << u"en"_s;
    QTest::newRow("chosen Chinese") << u"zh_CN"_s << QStringList { u"en-US"_s } << u"zh_CN"_s;
}

void TestMainWindow::languageFollowsTheSystem()
{
    QFETCH(QString, setting);
    QFETCH(QStringList, system);
    QFETCH(QString, language);
    QCOMPARE(InterfaceLanguage::resolve(setting, system), language);
}

namespace {
// The texts of every visible item of the window, as a person would read them.
QStringList shownTexts(QQuickItem *item)
{
    QStringList texts;
    if (!item->isVisible())
        return texts;
    if (const QVariant text = item->property("text"); text.isValid() && !text.toString().isEmpty())
        texts << text.toString();
    for (QQuickItem *child : item->childItems())
        texts << shownTexts(child);
    return texts;
}
} // namespace

// "界面语言" switches the window, its settings sheet and Qt's own texts without a restart, and back.
void TestMainWindow::switchesToEnglishAtOnce()
{
    InterfaceLanguage *language = InterfaceLanguage::instance();
    language->setSetting(u"zh_CN"_s);
    const MainWindow main(true);
    QQuickItem *content = main.window->contentItem();
    QVERIFY(shownTexts(content).contains(u"下载管理"_s));
    QVERIFY(shownTexts(content).contains(u"开始下载"_s));

    AppState::instance()->setShowSettings(true);
    QTRY_VERIFY(shownTexts(content).contains(u"界面语言"_s));
    auto *choice = main.window->findChild<QQuickItem *>(u"languageChoice"_s);
    QVERIFY(choice);
    QCOMPARE(choice->property("currentText").toString(), u"简体中文"_s);

    // A queue row's status, made in C++, follows too.
    TaskModel tasks;
    DownloadTask failed;
    failed.status = DownloadStatus::Failed;
    tasks.append(failed);
    QCOMPARE(tasks.data(tasks.index(0), TaskModel::StatusLabelRole).toString(), u"失败"_s);
    QSignalSpy rowsRead(&tasks, &TaskModel::dataChanged);

    language->setSetting(u"en"_s);
    QCOMPARE(language->language(), u"en"_s);
    QVERIFY(!rowsRead.isEmpty());
    QCOMPARE(tasks.data(tasks.index(0), TaskModel::StatusLabelRole).toString(), u"Failed"_s);
    const QStringList english = shownTexts(content);
    for (const QString &text : { u"Downloads"_s, u"Presets"_s, u"Start download"_s, u"Language"_s })
        QVERIFY2(english.contains(text), qPrintable(english.join(u" | "_s)));
    QVERIFY(!english.contains(u"下载管理"_s));
    QCOMPARE(choice->property("currentText").toString(), u"English"_s);
    QCOMPARE(QCoreApplication::translate("QPlatformTheme", "Cancel"), u"Cancel"_s);
    QCOMPARE(QSettings().value(QLatin1String(InterfaceLanguage::SettingKey)).toString(), u"en"_s);

    language->setSetting(u"zh_CN"_s);
    QVERIFY(shownTexts(content).contains(u"下载管理"_s));
    QCOMPARE(QCoreApplication::translate("QPlatformTheme", "Cancel"), u"取消"_s);
    AppState::instance()->setShowSettings(false);
}

void TestMainWindow::rendererChosen_data()
{
    QTest::addColumn<QString>("setting");
    QTest::addColumn<QStringList>("signs"); // NAME=VALUE of RendererChoice::Signs
    QTest::addColumn<bool>("software");
    QTest::addColumn<QString>("reason");

    const QString gpu = u"node=/dev/dri/renderD128"_s;
    QTest::newRow("a GPU") << u"auto"_s << QStringList { gpu, u"display=:0"_s } << false << u"renderD128"_s;
    QTest::newRow("no render node") << u"auto"_s << QStringList { u"display=:0"_s } << true << u"GPU 渲染设备"_s;
    QTest::newRow("Mesa told to use software")
        << u"auto"_s << QStringList { gpu, u"libgl=yes"_s } << true << u"LIBGL_ALWAYS_SOFTWARE"_s;
    QTest::newRow("Mesa's switch off") << u"auto"_s << QStringList { gpu, u"libgl=0"_s } << false << u"renderD128"_s;
    QTest::newRow("llvmpipe asked for") << u"auto"_s << QStringList { gpu, u"gallium=llvmpipe"_s } << true
                                        << u"GALLIUM_DRIVER"_s;
    QTest::newRow("ssh -X") << u"auto"_s << QStringList { gpu, u"display=localhost:10.0"_s } << true << u"另一台机器"_s;
    QTest::newRow("Wayland beside a remote X")
        << u"auto"_s << QStringList { gpu, u"display=host:0"_s, u"wayland=wayland-0"_s } << false << u"renderD128"_s;
    QTest::newRow("setting: software") << u"software"_s << QStringList { gpu } << true << u"设置为软件"_s;
    QTest::newRow("setting: hardware") << u"hardware"_s << QStringList {} << false << u"设置为硬件加速"_s;
    QTest::newRow("the environment over the setting")
        << u"hardware"_s << QStringList { gpu, u"quick=software"_s } << true << u"QT_QUICK_BACKEND=software"_s;
    QTest::newRow("an RHI named") << u"software"_s << QStringList { u"rhi=opengl"_s } << false
                                  << u"QSG_RHI_BACKEND=opengl"_s;
}

// The renderer follows the user's environment, then the setting, then what the machine has.
void TestMainWindow::rendererChosen()
{
    QFETCH(QString, setting);
    QFETCH(QStringList, signs);
    QFETCH(QString, reason);
    RendererChoice::Signs given;
    const QHash<QString, QString *> fields { { u"quick"_s, &given.quickBackend }, { u"rhi"_s, &given.rhiBackend },
        { u"libgl"_s, &given.libglAlwaysSoftware }, { u"gallium"_s, &given.galliumDriver },
        { u"display"_s, &given.display }, { u"wayland"_s, &given.waylandDisplay }, { u"node"_s, &given.renderNode } };
    for (const QString &sign : std::as_const(signs))
        *fields.value(sign.section(u'=', 0, 0)) = sign.section(u'=', 1);
    const RendererChoice::Decision decision = RendererChoice::decide(setting, given);
    QTEST(decision.software, "software");
    QVERIFY2(decision.reason.contains(reason), qPrintable(decision.reason));
}

// Render nodes count when this user may open them and a GPU is behind them.
void TestMainWindow::renderNodesFound()
{
    QTemporaryDir machine;
    const QDir root(machine.path());
    QVERIFY(root.mkpath(u"dri"_s) && root.mkpath(u"sys"_s));
    const auto write = [](const QString &path, const QByteArray &bytes) {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    };
    const auto node = [&](const QString &name, const QString &driver, const QByteArray &features = {}) {
        QVERIFY(write(root.filePath(u"dri/"_s + name), {}));
        const QString device = root.filePath(u"devices/"_s + name);
        QVERIFY(QDir().mkpath(device) && root.mkpath(u"drivers/"_s + driver) && root.mkpath(u"sys/"_s + name));
        QVERIFY(QFile::link(root.filePath(u"drivers/"_s + driver), device + u"/driver"_s));
        QVERIFY(QFile::link(device, root.filePath(u"sys/%1/device"_s.arg(name))));
        if (!features.isEmpty())
            QVERIFY(write(device + u"/features"_s, features));
    };
    const auto found
        = [&] { return RendererChoice::readSigns(root.filePath(u"dri"_s), root.filePath(u"sys"_s)).renderNode; };
    QCOMPARE(found(), QString());
    node(u"renderD128"_s, u"vkms"_s);
    node(u"renderD129"_s, u"virtio_gpu"_s, "0000000000000000000000000000000000000000\n");
    QCOMPARE(found(), QString());
    node(u"renderD130"_s, u"virtio_gpu"_s, "1000000000000000000000000000000000000000\n");
    QCOMPARE(found(), root.filePath(u"dri/renderD130"_s));
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
