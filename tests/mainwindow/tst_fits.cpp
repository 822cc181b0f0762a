// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Application.h"
#include "dialogs/AboutForm.h"
#include "dialogs/CalendarForm.h"
#include "dialogs/ElidedLabel.h"
#include "dialogs/LoginForm.h"
#include "dialogs/TaskDescriptionForm.h"
#include "dialogs/TaskForm.h"
#include "dialogs/TaskListForm.h"
#include "mainwindow/MainForm.h"
#include "notifications/NotificationForm.h"
#include "notifications/NotificationType.h"
#include "res/Resources.h"
#include "service/TessaPort.h"
#include "support/Files.h"
#include "support/TestMain.h"
#include "update/UpdateState.h"

#include <QCalendarWidget>
#include <QLabel>
#include <QLineEdit>
#include <QMetaEnum>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QStyleOptionButton>
#include <QTableView>
#include <QTextEdit>
#include <QTimeEdit>
#include <QToolButton>

#include <cmath>
#include <vector>

namespace {

const QString teamId = QStringLiteral("17");
const QString taskId = QStringLiteral("1");

/// What the widget's text needs beyond what there is for it, as text; empty when it fits.
QString lack(const QWidget* widget, const QSize& needed, const QSize& given)
{
    if (needed.width() <= given.width() && needed.height() <= given.height())
        return QString();
    return QStringLiteral("%1 of %2: %3x%4 in %5x%6")
        .arg(widget->objectName(), QLatin1String(widget->window()->metaObject()->className()))
        .arg(needed.width())
        .arg(needed.height())
        .arg(given.width())
        .arg(given.height());
}

/// As wide as the text runs, and as high as its ink: some lines are lower than those of a
/// paragraph.
QSize textSize(const QWidget* widget, const QString& text)
{
    const QFontMetrics metrics(widget->font());
    return {metrics.horizontalAdvance(text), metrics.tightBoundingRect(text).height()};
}

QString lackOfLabel(const QLabel* label)
{
    // A text from outside may be shortened, and there is a tool tip for it.
    if (dynamic_cast<const ElidedLabel*>(label))
        return QString();
    if (label->text().isEmpty()) {
        // But for those that tell of a request.
        const bool mayBeEmpty = label->objectName() == QLatin1String("lbInfo")
            || label->objectName() == QLatin1String("lbLoading");
        const bool isEmpty = label->pixmap(Qt::ReturnByValue).isNull();
        return isEmpty && !mayBeEmpty ? label->objectName() : QString();
    }
    if (Qt::mightBeRichText(label->text()))
        return lack(label, label->sizeHint(), label->size());
    if (label->wordWrap())
        return lack(label, {0, label->heightForWidth(label->width())}, label->size());
    return lack(label, textSize(label, label->text()), label->contentsRect().size());
}

QString lackOfButton(const QPushButton* button)
{
    // A picture is told by a name, and under the pointer by the same words.
    const QString name = button->text().isEmpty() ? button->accessibleName() : button->text();
    if (name.isEmpty() || (!button->toolTip().isEmpty() && button->toolTip() != name))
        return QStringLiteral("%1 is called \"%2\"").arg(button->objectName(), name);
    QStyleOptionButton option;
    option.initFrom(button);
    return lack(
        button, textSize(button, button->text()),
        button->style()->subElementRect(QStyle::SE_PushButtonContents, &option, button).size());
}

QStringList lacksOfCalendar(QCalendarWidget* calendar)
{
    QStringList lacks;
    const auto days = calendar->findChild<QTableView*>(QStringLiteral("qt_calendar_calendarview"));
    // What an item view leaves free beside a text, before it shortens it.
    const int margin = days->style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1;
    for (int row = 0; row < 7; ++row) {
        for (int column = 0; column < 7; ++column) {
            const QModelIndex index = days->model()->index(row, column);
            lacks << lack(days, textSize(days, index.data().toString()),
                          days->visualRect(index).adjusted(margin, 0, -margin, 0).size());
        }
    }
    for (const char* name : {"qt_calendar_monthbutton", "qt_calendar_yearbutton"}) {
        const auto button = calendar->findChild<QToolButton*>(QLatin1String(name));
        for (int month = 1; month <= 12; ++month) {
            calendar->setCurrentPage(2028, month);
            QString text = button->text();
            text[0] = text[0].toUpper();
            lacks << lack(button, textSize(button, text), button->size());
        }
    }
    return lacks;
}

QString kindOf(const QWidget* window)
{
    QString kind = QString::fromLatin1(
        QMetaEnum::fromType<Qt::WindowType>().valueToKey(int(window->windowType())));
    if (!window->windowFlags().testFlag(Qt::FramelessWindowHint))
        kind += QStringLiteral(", framed");
    if (window->windowFlags().testFlag(Qt::WindowStaysOnTopHint))
        kind += QStringLiteral(", on top");
    if (window->windowModality() == Qt::WindowModal)
        kind += QStringLiteral(", modal to its parent");
    return window->windowModality() == Qt::ApplicationModal ? kind + QStringLiteral(", modal")
                                                            : kind;
}

/// Every text of the program's own in the window that does not fit its place.
QStringList lacks(QWidget* window)
{
    QStringList lacks;
    for (const auto label : window->findChildren<QLabel*>()) {
        if (label->isVisible())
            lacks << lackOfLabel(label);
    }
    for (const auto button : window->findChildren<QPushButton*>()) {
        if (button->isVisible())
            lacks << lackOfButton(button);
    }
    for (const auto calendar : window->findChildren<QCalendarWidget*>())
        lacks << lacksOfCalendar(calendar);
    for (const auto time : window->findChildren<QTimeEdit*>()) {
        const auto line = time->findChild<QLineEdit*>();
        lacks << lack(time, textSize(line, line->text()), line->size());
    }
    lacks.removeAll(QString());
    return lacks;
}

/// Scrolls to a part of the window, where that scrolls; the room that there is for it then.
QSize bringIntoView(QWidget* part)
{
    const auto area = part->window()->findChild<QScrollArea*>();
    if (!area)
        return part->size();
    area->ensureWidgetVisible(part, 0, 0);
    return part->size().boundedTo(area->viewport()->size());
}

/// The labels and buttons of the window that it neither shows nor scrolls to.
QStringList outOfReach(QWidget* window)
{
    QStringList names;
    const auto parts = window->findChildren<QWidget*>();
    for (QWidget* const part : parts) {
        if (!part->isVisible() || !(part->inherits("QLabel") || part->inherits("QPushButton")))
            continue;
        const QSize room = bringIntoView(part);
        if (part->visibleRegion().boundingRect().size() != room)
            names << part->objectName();
    }
    return names;
}

/// Where a part of a window can be seen: of a label its text.
QRect seenPlace(const QWidget* part)
{
    const auto* const label = qobject_cast<const QLabel*>(part);
    if (!label || label->text().isEmpty())
        return part->geometry();
    const QRect text =
        label->fontMetrics().boundingRect(part->geometry(), int(label->alignment()), label->text());
    return text & part->geometry();
}

/// The parts of the window that stand on one another.
QStringList overlaps(const QWidget* window)
{
    QStringList names;
    QWidgetList parts = window->findChildren<QWidget*>();
    parts.erase(std::remove_if(parts.begin(), parts.end(),
                               [](const QWidget* part) {
                                   // What only holds others is not seen.
                                   return !part->isVisible()
                                       || qstrcmp(part->metaObject()->className(), "QWidget") == 0;
                               }),
                parts.end());
    for (int i = 0; i < parts.size(); ++i) {
        for (const QWidget* const other : parts.mid(i + 1)) {
            if (parts[i]->parent() == other->parent()
                && seenPlace(parts[i]).intersects(seenPlace(other)))
                names << parts[i]->objectName() + QStringLiteral(" on ") + other->objectName();
        }
    }
    return names;
}

} // namespace

/// All windows as they come up, on a desktop of whatever size and resolution.
class FitsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        const int told = qEnvironmentVariableIntValue("DESKTOP_DPI");
        if (told > 0)
            QCOMPARE(qApp->devicePixelRatio(), told / 96.0);
        qApp->setStyleSheet(QString::fromUtf8(contentOf(QStringLiteral(":/qss/main.qss"))));
        QApplication::setFont(QApplication::font());

        m_service = std::make_unique<TessaPort>();
        UpdateState::instance()->init(m_service.get());
        Session* const session = m_service->session();
        session->load(QStringLiteral("a@b"), QStringLiteral("p"));
        session->setIsOnline(false);
        Task task;
        task.id = taskId;
        task.title = QStringLiteral("Сверстать карточку товара по новому макету");
        task.deadline = QDateTime::currentDateTime().addDays(-12).addSecs(-86000);
        session->setTasks({task}, teamId);
        session->setTeamID(teamId);
        session->setTaskID(taskId);
        m_strip = std::make_unique<MainForm>(m_service.get(), nullptr);
        m_list = m_strip->findChild<TaskListForm*>();
    }

    void cleanupTestCase()
    {
        m_windows.clear();
        m_strip.reset();
        m_service.reset();
    }

    void windows_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("panel");
        const QString big = QStringLiteral(":/images/res/images/big_fon.png");
        const QString main = QStringLiteral(":/images/main.png");
        const QString notice = QStringLiteral(":/images/bg_notifications_withLogo.png");
        const auto row = [](const char* name, const char* kind, const QString& panel) {
            QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(kind) << panel;
        };
        row("strip", "Dialog, on top", main);
        row("sign-in", "Tool, on top", QStringLiteral(":/images/wlogin-top.png"));
        row("picker", "Dialog, on top, modal to its parent", main);
        row("list", "Dialog, on top", big);
        row("description", "Dialog, on top", big);
        row("texts", "Dialog, on top", big);
        row("deadline", "Dialog, on top, modal",
            QStringLiteral(":/images/res/images/kalendar_fon.png"));
        row("about", "Dialog, framed", QString());
        row("notice", "Tool, on top", notice);
        row("update", "Tool, on top", notice);
    }

    void windows()
    {
        QFETCH(QString, name);
        QFETCH(QString, kind);
        QWidget* const window = windowOf(name);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        QCOMPARE(kindOf(window), kind);
        QCOMPARE(window->objectName(), QLatin1String(window->metaObject()->className()));
        QFETCH(QString, panel);
        if (!panel.isEmpty()) {
            comparePanel(window, panel);
            // On other screens it begins in the midst of a pixel.
            if (std::floor(qApp->devicePixelRatio()) == qApp->devicePixelRatio())
                comparePanel(window, panel, true);
        }
        QCOMPARE(lacks(window).join(QStringLiteral("; ")), QString());
        QCOMPARE(overlaps(window).join(QStringLiteral("; ")), QString());

        const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
        QTRY_VERIFY2(
            area.contains(window->geometry()),
            qPrintable(QStringLiteral("%1 at %2, %3").arg(name).arg(window->x()).arg(window->y())));
        QCOMPARE(outOfReach(window).join(QStringLiteral("; ")), QString());
        takePicture(window, name);
    }

    /// Drawn from the picture in double size, and shrunk: no edge may be thicker than its opposite.
    void edgesOfAButton()
    {
        CalendarForm form;
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        const auto button = form.findChild<QPushButton*>(QStringLiteral("pbTessaport"));
        bringIntoView(button);
        const QImage image = form.grab().toImage();
        const qreal ratio = image.devicePixelRatio();
        const QRectF place(QPointF(button->mapTo(&form, {})) * ratio,
                           QSizeF(button->size()) * ratio);
        // How much darker than the fill: the sum over the columns of an edge.
        const auto ink = [&](int from, int to) {
            qreal sum = 0;
            for (int x = from; x < to; ++x)
                sum += 255 - image.pixelColor(x, int(place.center().y())).blue();
            return sum;
        };
        const int width = int(std::ceil(3 * ratio));
        const qreal left = ink(int(place.left()), int(place.left()) + width);
        const qreal right =
            ink(int(std::ceil(place.right())) - width, int(std::ceil(place.right())));
        QVERIFY2(left > 100 && std::abs(left - right) < 0.3 * left,
                 qPrintable(QStringLiteral("%1 and %2").arg(left).arg(right)));
    }

private:
    QWidget* windowOf(const QString& name)
    {
        if (name == QLatin1String("strip"))
            return m_strip.get();
        if (name == QLatin1String("list"))
            return m_list;
        std::unique_ptr<QWidget> made;
        if (name == QLatin1String("sign-in"))
            made = std::make_unique<LoginForm>(m_service.get(), nullptr);
        else if (name == QLatin1String("picker"))
            made = std::make_unique<TaskForm>(m_strip.get(), nullptr);
        else if (name == QLatin1String("deadline"))
            made = std::make_unique<CalendarForm>();
        else if (name == QLatin1String("about"))
            made = std::make_unique<AboutForm>(m_service.get(), nullptr);
        else if (name == QLatin1String("notice") || name == QLatin1String("update"))
            made = notice(name == QLatin1String("update") ? UpdateAvailable : TaskAdded);
        else
            made = description(name == QLatin1String("texts"));
        m_windows.push_back(std::move(made));
        return m_windows.back().get();
    }

    std::unique_ptr<QWidget> notice(int type)
    {
        auto form = std::make_unique<NotificationForm>(QStringLiteral("1.10.2"), type, QString(),
                                                       m_strip.get());
        form->placeInSlot(0);
        return form;
    }

    std::unique_ptr<QWidget> description(bool showsTexts)
    {
        auto form = std::make_unique<TaskDescriptionForm>(taskId, m_service.get(), m_list);
        if (showsTexts)
            form->on_pbCopyrightTasks_clicked();
        return form;
    }

    /// The head of the window, or its foot, is that of its picture, stretched to what the window is
    /// drawn for, wherever nothing stands on it.
    static void comparePanel(QWidget* window, QString panel, bool isFoot = false)
    {
        const int top = isFoot ? window->height() - 30 : 0;
        const QImage shown = window->grab({0, top, window->width(), 30}).toImage();
        const bool isSignIn = window->inherits("LoginForm");
        if (isSignIn && isFoot)
            panel = QStringLiteral(":/images/login.png");
        const int height = isSignIn                   ? (isFoot ? window->height() - 30 : 40)
            : window->inherits("TaskListForm")        ? 565
            : window->inherits("TaskDescriptionForm") ? 437
            : window->inherits("CalendarForm")        ? 360
                                                      : window->height();
        QImage known(shown.size(), QImage::Format_ARGB32_Premultiplied);
        known.setDevicePixelRatio(shown.devicePixelRatio());
        known.fill(Qt::transparent);
        QPainter painter(&known);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(QRect(0, isFoot ? 30 - height : 0, window->width(), height),
                          panelImage(panel));
        painter.end();
        const QPointF farFromHead(0.08 * window->width(), 0.6 * window->height());
        QCOMPARE(window->grab()
                     .toImage()
                     .pixelColor((farFromHead * shown.devicePixelRatio()).toPoint())
                     .alpha(),
                 255);
        int compared = 0, same = 0;
        for (int y = isFoot ? 12 : 1; y < 29; ++y) {
            for (int x = 1; x < window->width(); x += 3) {
                const QWidget* const child = window->childAt(x, top + y);
                if (child && child->objectName() != QLatin1String("wTop")
                    && child->objectName() != QLatin1String("wLoginPane")
                    && child->objectName() != QLatin1String("wContents"))
                    continue;
                const QPoint pixel = QPoint(x, y) * shown.devicePixelRatio();
                const QColor one = shown.pixelColor(pixel), other = known.pixelColor(pixel);
                ++compared;
                same += std::abs(one.alpha() - other.alpha()) + std::abs(one.red() - other.red())
                        + std::abs(one.blue() - other.blue())
                    < 24;
            }
        }
        QVERIFY2(compared > 200 && same > 0.9 * compared,
                 qPrintable(QStringLiteral("%1 of %2").arg(same).arg(compared)));
    }

    /// For people to look at.
    static void takePicture(QWidget* window, const QString& name)
    {
        const QDir folder(QStringLiteral(PICTURE_FOLDER));
        QVERIFY(folder.mkpath(QStringLiteral(".")));
        const QImage image = window->grab().toImage();
        QVERIFY(image.save(folder.filePath(
            QStringLiteral("%1-%2.png").arg(name).arg(qRound(image.devicePixelRatio() * 100)))));
    }

    std::unique_ptr<TessaPort> m_service;
    std::unique_ptr<MainForm> m_strip;
    /// Kept, and kept in sight: what the display says of one that has gone is logged.
    std::vector<std::unique_ptr<QWidget>> m_windows;
    TaskListForm* m_list = nullptr;
};

TESSAPORT_TEST_MAIN(FitsTest, Application)

#include "tst_fits.moc"
