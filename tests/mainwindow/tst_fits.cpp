// SPDX-License-Identifier: GPL-3.0-or-later
#include "WindowFit.h"

#include "app/Application.h"
#include "dialogs/AboutForm.h"
#include "dialogs/CalendarForm.h"
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

#include <QMetaEnum>
#include <QPainter>
#include <QPushButton>
#include <QScreen>

#include <cmath>
#include <vector>

namespace {

const QString teamId = QStringLiteral("17");
const QString taskId = QStringLiteral("1");

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
