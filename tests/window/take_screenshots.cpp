#include "MainWindow.h"
#include "Picture.h"
#include "SequenceDock.h"

#include <QtCore/QDir>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QSpinBox>
#include <QtWidgets/QToolButton>

#include <cstdio>
#include <cstdlib>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr int limit = 120000;  // ms; a failure, never a measure
const auto sound = u"./com.orvane.KVX.Plugin.LogicalDevice.RV418.so"_s;
const auto broken =
    u"./tests/broken/report-rate-flag-without-signal/com.orvane.KVX.Plugin.LogicalDevice.RV418.so"_s;

[[noreturn]] void giveUp(const QString &reason)
{
    std::fprintf(stderr, "take_screenshots: %s\n", qPrintable(reason));
    std::exit(EXIT_FAILURE);
}

template <typename Widget>
Widget *find(const QWidget &parent, const QString &name)
{
    auto *const widget = parent.findChild<Widget *>(name);
    if (!widget)
        giveUp(u"the window has no widget \"%1\""_s.arg(name));
    return widget;
}

void waitFor(const QString &what, const std::function<bool()> &condition)
{
    if (!QTest::qWaitFor(condition, limit))
        giveUp(u"waited in vain for %1"_s.arg(what));
}

/// In front of the docks that share its place.
void raise(QWidget *widget)
{
    for (; widget; widget = widget->parentWidget()) {
        if (auto *const dock = qobject_cast<QDockWidget *>(widget)) {
            dock->show();
            dock->raise();
        }
    }
}

QPalette darkPalette()
{
    const QColor window(45, 45, 48);
    const QColor base(30, 30, 32);
    const QColor text(230, 230, 230);
    const QColor faint(140, 140, 140);
    QPalette palette(window, window);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        palette.setColor(role, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::ToolTipBase, window);
    palette.setColor(QPalette::Highlight, QColor(42, 100, 170));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(110, 170, 250));
    palette.setColor(QPalette::PlaceholderText, faint);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, faint);
    return palette;
}

void save(QWidget &window, const QString &name)
{
    // Layouts settle and what flashes has ended.
    constexpr int pause = 1500;  // ms
    QTest::qWait(pause);
    if (!savePicture(window.grab().toImage(), name))
        giveUp(u"%1 cannot be written"_s.arg(name));
}

/// A window with a session of one started mouse.
struct ShownWindow
{
    explicit ShownWindow(const QString &library = sound) : window({u"./kvx"_s, library, {}})
    {
        constexpr QSize size(1400, 900);
        window.resize(size);
        window.show();
        window.newSession();
        waitFor(u"the session"_s, [this] { return !window.engine()->state().isEmpty(); });
        settle();
    }

    void settle()
    {
        waitFor(u"the answers"_s, [this] { return !window.engine()->isBusy(); });
    }

    void click(const QString &name)
    {
        QTest::mouseClick(find<QAbstractButton>(window, name), Qt::LeftButton);
        settle();
    }

    void type(const QString &name, const QString &text) const
    {
        auto *const line = find<QLineEdit>(window, name);
        line->setFocus();
        line->selectAll();
        QTest::keyClicks(line, text);
    }

    void choose(const QString &name, const QString &text)
    {
        auto *const box = find<QComboBox>(window, name);
        raise(box);
        if (box->isEditable())
            box->lineEdit()->selectAll();
        QTest::keyClicks(box, text);
        QTest::keyClick(box, Qt::Key_Return);
        settle();
    }

    /// Leaves their place to the others.
    void closeMice() const
    {
        find<QDockWidget>(window, u"miceDock"_s)->close();
        find<QDockWidget>(window, u"mouseDock"_s)->close();
    }

    MainWindow window;
};

void pressTheDpiButton(ShownWindow &shown)
{
    shown.click(u"mouseButton-dpi"_s);
    shown.choose(u"requestReportRate"_s, u"1000"_s);
}

void takeSession(const QDir &folder, const QPalette &light)
{
    ShownWindow shown;
    pressTheDpiButton(shown);
    save(shown.window, folder.filePath(u"workbench.png"_s));
    QApplication::setPalette(darkPalette());
    save(shown.window, folder.filePath(u"workbench-dark.png"_s));
    QApplication::setPalette(light);
}

void takeSequence(const QDir &folder)
{
    ShownWindow shown;
    pressTheDpiButton(shown);
    // From the call to the last line.
    auto *const table = find<QAbstractItemView>(shown.window, u"timelineTable"_s);
    const QAbstractItemModel &model = *table->model();
    QModelIndexList calls;
    waitFor(u"the call in the timeline"_s, [&] {
        const QModelIndex first = model.index(0, model.columnCount() - 1);
        calls = model.match(first, Qt::DisplayRole, u"call setReportRate(1000)"_s);
        return !calls.isEmpty();
    });
    const int last = model.rowCount() - 1;
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {},
                      table->visualRect(model.index(last, model.columnCount() - 1)).center());
    for (int row = last; row > calls.first().row(); --row)
        QTest::keyClick(table, Qt::Key_Up, Qt::ShiftModifier);
    shown.closeMice();
    raise(shown.window.findChild<SequenceDock *>());
    QTest::qWait(0);
    find<QToolButton>(shown.window, u"fitWidth"_s)->click();
    save(shown.window, folder.filePath(u"workbench-sequence.png"_s));
}

void takeFault(const QDir &folder)
{
    ShownWindow shown;
    shown.choose(u"faultEffect_reportRateConfirmed"_s, u"drop"_s);
    // One is used up below.
    auto *const times = find<QSpinBox>(shown.window, u"faultTimes_reportRateConfirmed"_s);
    times->setFocus();
    QTest::keyClick(times, Qt::Key_Up);
    shown.click(u"faultSet_reportRateConfirmed"_s);
    shown.choose(u"requestReportRate"_s, u"1000"_s);
    shown.type(u"valuesFilter"_s, u"reportRate"_s);
    raise(times);
    auto *const rows = find<QScrollArea>(shown.window, u"faultsRows"_s);
    rows->ensureWidgetVisible(times);
    rows->horizontalScrollBar()->setValue(0);
    save(shown.window, folder.filePath(u"workbench-fault.png"_s));
}

void takeFailedCheck(const QDir &folder)
{
    ShownWindow shown(broken);
    shown.closeMice();
    raise(find<QWidget>(shown.window, u"checkTree"_s));
    shown.type(u"checkNames"_s, u"report-rate load active-slot"_s);
    shown.click(u"checkStart"_s);
    waitFor(u"the check's end"_s, [&] { return find<QWidget>(shown.window, u"checkStart"_s)->isEnabled(); });
    save(shown.window, folder.filePath(u"workbench-check.png"_s));
}

}  // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 2)
        giveUp(u"give the folder of the pictures"_s);
    const QDir folder(QDir::current().absoluteFilePath(arguments.last()));
    if (!folder.mkpath(u"."_s))
        giveUp(u"%1 cannot be made"_s.arg(folder.path()));
    // Not the user's: layout and recent files.
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    // Paths in the pictures are the same for everybody.
    QDir::setCurrent(QStringLiteral(KVX_BUILD_FOLDER));
    QApplication::setStyle(u"Fusion"_s);
    takeSession(folder, QApplication::palette());
    takeFault(folder);
    takeSequence(folder);
    takeFailedCheck(folder);
    return EXIT_SUCCESS;
}
