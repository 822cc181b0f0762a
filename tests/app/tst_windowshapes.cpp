// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/WindowShapes.h"
#include "platform/WindowSystem.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QPainter>
#include <QWidget>

namespace {

constexpr QRect panel(10, 10, 80, 60);
constexpr QRect shadow(10, 70, 80, 5);

class PanelWindow : public QWidget {
public:
    PanelWindow()
    {
        setWindowFlags(Qt::Tool | Qt::FramelessWindowHint);
        setAttribute(Qt::WA_TranslucentBackground);
        resize(100, 80);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(panel, Qt::white);
        painter.fillRect(shadow, QColor(0, 0, 0, 40));
    }
};

} // namespace

class TestWindowShapes : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { qApp->installEventFilter(&m_shapes); }

    void aPanelKeepsItsShadowOnlyWhereWindowsAreMixed()
    {
        PanelWindow window;
        window.show();
        QCOMPARE(window.mask(), platform::mixesTranslucentWindows() ? QRegion() : QRegion(panel));
        QWidget ordinaryWindow;
        ordinaryWindow.show();
        QCOMPARE(ordinaryWindow.mask(), QRegion());
    }

private:
    WindowShapes m_shapes{nullptr};
};

TESSAPORT_TEST_MAIN(TestWindowShapes, QApplication)

#include "tst_windowshapes.moc"
