#include "model/appstate.h"
#include "views/applifecycle.h"
#include "views/qmlsetup.h"

#include "testsupport.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlListReference>
#include <QQmlProperty>
#include <QQuickItem>
#include <QQuickWindow>
#include <QScreen>
#include <QSet>
#include <QSettings>
#include <QtQml/qqmlextensionplugin.h>
#include <QtTest>

Q_IMPORT_QML_PLUGIN(QuillboxPlugin)

using namespace Qt::StringLiterals;

class TestMainWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { IsolatedEnvironment::clearSettings(); }
    void firstRunIsCentred();
    void geometryRestored();
    void unusableGeometryIgnored_data();
    void unusableGeometryIgnored();
    void keyEquivalents();
    void menusAsDesigned();
    void undoBringsBackClearedLinks();
    void qtTextsAreChinese();

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
};
} // namespace

void TestMainWindow::firstRunIsCentred()
{
    const MainWindow main;
    QQuickWindow *window = main.window;
    QVERIFY(window->isVisible());
    QCOMPARE(window->title(), u"Quillbox - 视频下载管理器"_s);
    QCOMPARE(window->size(), QSize(1200, 800));
    QCOMPARE(window->minimumSize(), QSize(900, 600));
    const QRect available = window->screen()->availableGeometry();
    // Within the few pixels a window frame may add.
    QVERIFY(qAbs(window->geometry().center().x() - available.center().x()) <= 4);
    QVERIFY(qAbs(window->geometry().center().y() - available.center().y()) <= 4);
}

void TestMainWindow::geometryRestored()
{
    const QRect moved(40, 30, 1000, 700);
    {
        const MainWindow main;
        main.window->setGeometry(moved);
        main.window->close(); // closing keeps the frame for the next start
    }
    QCOMPARE(QSettings().value(u"Main Window/geometry"_s).toRect(), moved);
    QCOMPARE(MainWindow().window->geometry(), moved);
}

void TestMainWindow::unusableGeometryIgnored_data()
{
    QTest::addColumn<QRect>("stored");
    QTest::newRow("off every screen") << QRect(-50000, -50000, 1000, 700);
    QTest::newRow("below the minimum") << QRect(10, 10, 300, 200);
    QTest::newRow("empty") << QRect();
}

void TestMainWindow::unusableGeometryIgnored()
{
    QFETCH(QRect, stored);
    QCOMPARE(AppLifecycle::usableGeometry(stored, QSize(900, 600)), QRect());
    QSettings().setValue(u"Main Window/geometry"_s, stored);
    const MainWindow main;
    QCOMPARE(main.window->size(), QSize(1200, 800));
    QVERIFY(main.window->screen()->availableGeometry().intersects(main.window->geometry()));
}

void TestMainWindow::keyEquivalents()
{
    const MainWindow main(true);
    QQuickWindow *window = main.window;
    // New Download and Preferences are there but disabled: their keys do nothing.
    QTest::keyClick(window, Qt::Key_N, Qt::ControlModifier);
    QTest::keyClick(window, Qt::Key_Comma, Qt::ControlModifier);
    QTest::qWait(50);
    QVERIFY(window->isVisible());

    QTest::keyClick(window, Qt::Key_W, Qt::ControlModifier);
    QTRY_VERIFY(!window->isVisible());
}

// Each menu as "title: entry, entry | entry", a separator as "|" and a disabled entry in
// brackets; read after opening the menu, which is when its entries are made.
void TestMainWindow::menusAsDesigned()
{
    const MainWindow main(true);
    QQuickWindow *window = main.window;
    auto *menuBar = window->property("menuBar").value<QObject *>();
    QVERIFY(menuBar);

    QStringList menus;
    QSet<QString> labelColours[2]; // of disabled, of enabled entries
    QQuickItem *aboutItem = nullptr;
    const QQmlListReference list(menuBar, "menus");
    for (qsizetype i = 0; i < list.count(); ++i) {
        QObject *menu = list.at(i);
        QVERIFY(QMetaObject::invokeMethod(menu, "open"));
        QTRY_VERIFY(menu->property("opened").toBool());
        QString text = menu->property("title").toString() + u':';
        for (int at = 0; at < menu->property("count").toInt(); ++at) {
            QQuickItem *entry = nullptr;
            QVERIFY(QMetaObject::invokeMethod(menu, "itemAt", Q_RETURN_ARG(QQuickItem *, entry), Q_ARG(int, at)));
            const QString label = entry->property("text").toString();
            if (label.isEmpty()) {
                text += u" |"_s;
                continue;
            }
            text += entry->isEnabled() ? QString(u' ' + label) : QString(u" ["_s + label + u']');
            // The key equivalent as the entry shows it, and the label's colour by state.
            auto *keys = entry->findChild<QQuickItem *>(u"menuItemKeys"_s);
            if (keys && keys->isVisible())
                text += u'(' + keys->property("text").toString() + u')';
            auto *shown = entry->findChild<QQuickItem *>(u"menuItemText"_s);
            QVERIFY(shown);
            labelColours[entry->isEnabled()] << shown->property("color").value<QColor>().name();
            if (label == u"关于 Quillbox"_s)
                aboutItem = entry;
        }
        menus << text;
        QVERIFY(QMetaObject::invokeMethod(menu, "close"));
        QTRY_VERIFY(!menu->property("visible").toBool());
    }
    QCOMPARE(menus,
        QStringList({ u"Quillbox: 关于 Quillbox | [偏好设置...](Ctrl+,) | 隐藏 Quillbox(Ctrl+H) "
                      u"隐藏其他(Ctrl+Alt+H) 显示全部 | 退出 Quillbox(Ctrl+Q)"_s,
            u"文件: [新建下载任务](Ctrl+N) | 关闭窗口(Ctrl+W)"_s,
            u"编辑: 撤销(Ctrl+Z) 重做(Ctrl+Shift+Z) | 剪切(Ctrl+X) 复制(Ctrl+C) 粘贴(Ctrl+V) 全选(Ctrl+A)"_s,
            u"窗口: 最小化(Ctrl+M) 缩放 | 全部置于顶层"_s }));
    // Disabled entries are drawn in another colour than the enabled ones.
    QCOMPARE(labelColours[0].size(), 1);
    QCOMPARE(labelColours[1].size(), 1);
    QVERIFY(labelColours[0] != labelColours[1]);

    // Opening a menu again, as a person does, does not add its entries twice; and
    // "关于 Quillbox" opens the About panel, made on that first use.
    QQuickItem *title = nullptr;
    QVERIFY(QMetaObject::invokeMethod(menuBar, "itemAt", Q_RETURN_ARG(QQuickItem *, title), Q_ARG(int, 0)));
    main.click(title);
    QObject *first = list.at(0);
    QTRY_VERIFY(first->property("opened").toBool());
    QCOMPARE(first->property("count").toInt(), 9);
    QVERIFY(aboutItem);
    main.click(aboutItem);
    auto *about = window->findChild<QObject *>(u"aboutDialog"_s);
    QVERIFY(about);
    QTRY_VERIFY(about->property("opened").toBool());
}

// "清空" is an edit of the links, so the edit menu's "撤销" brings them back.
void TestMainWindow::undoBringsBackClearedLinks()
{
    const MainWindow main(true);
    QQuickWindow *window = main.window;

    const QString links = u"https://a.example/1\nhttps://b.example/2"_s;
    AppState::instance()->setUrlInput(links);
    auto *clear = window->findChild<QQuickItem *>(u"clearButton"_s);
    QVERIFY(clear);
    main.click(clear);
    QCOMPARE(AppState::instance()->urlInput(), QString());

    const QQmlListReference menus(window->property("menuBar").value<QObject *>(), "menus");
    QObject *editMenu = menus.at(2);
    QCOMPARE(editMenu->property("title").toString(), u"编辑"_s);
    QVERIFY(QMetaObject::invokeMethod(editMenu, "open"));
    QTRY_VERIFY(editMenu->property("opened").toBool());
    QQuickItem *undo = nullptr;
    QVERIFY(QMetaObject::invokeMethod(editMenu, "itemAt", Q_RETURN_ARG(QQuickItem *, undo), Q_ARG(int, 0)));
    QCOMPARE(undo->property("text").toString(), u"撤销"_s);
    // The menu lays out its entries, made as it opens, on the next frame.
    QTRY_VERIFY(editMenu->property("height").toReal() > 4 * undo->height());
    main.click(undo);
    QTRY_COMPARE(AppState::instance()->urlInput(), links);
}

// Qt's own buttons (the folder dialog's, the About panel's) read in Chinese, whatever the locale.
void TestMainWindow::qtTextsAreChinese()
{
    AppLifecycle::loadQtTranslations();
    QCOMPARE(QCoreApplication::translate("QPlatformTheme", "Cancel"), u"取消"_s);
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
