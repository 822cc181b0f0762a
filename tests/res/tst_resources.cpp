// SPDX-License-Identifier: GPL-3.0-or-later
#include "res/Resources.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QFile>
#include <QFontInfo>
#include <QPushButton>
#include <QRegularExpression>

namespace {

/// The names that the windows and the style sheet rely on, by folder.
const char* const names[][2] = {
    {":/qss/", "main.qss"},
    {":/fonts/res/fonts/", "TAHOMA.TTF TAHOMABD.TTF"},
    {":/images/",
     "bg_notifications_withLogo.png le.png login.png logo.png main.png pb-hover.png pb-pressed.png "
     "pb.png pbAttention_Active_clicked.png pbAttention_Active_Hovered.png "
     "pbAttention_Active_normal.png pbAttention_NoActive_clicked.png "
     "pbAttention_NoActive_Hoveredl.png pbAttention_NoActive_normal.png pbComment.png "
     "pbLoginClose-hover.png pbLoginClose-pressed.png pbLoginClose.png pbMenu-hover.png "
     "pbMenu-pressed.png pbMenu.png pbMinimize-hover.png pbMinimize-pressed.png pbMinimize.png "
     "pbPause_Disabled.png pbPause_Offline.png pbPause_Offline_hovered.png "
     "pbPause_Offline_hovered_clicked.png pbPause_Online.png pbPause_Online_hovered.png "
     "pbPause_Online_hovered_clicked.png pbPlay_Disabled.png pbPlay_Offline.png "
     "pbPlay_Offline_hovered.png pbPlay_Offline_hovered_clicked.png pbPlay_Online.png "
     "pbPlay_Online_hovered.png pbPlay_Online_hovered_clicked.png pbTask.png pbTaskBlocked.png "
     "pbTaskUrgent.png pbTaskUrgentGrey.png wlogin-top.png"},
    {":/images/res/images/",
     "big_fon.png hide_icon.png kalendar_fon.png reasonLabel.png timeLabel.png TP.png"},
    {":/images/res/images/task_desc_dialog/",
     "attachment_icon.png back_button.png descr_button.png descr_button_hovered.png "
     "descr_button_pressed.png"},
    {":/images/res/images/task_list_dialog/",
     "task_target_button.png task_target_button_hovered.png task_target_button_pressed.png"},
    {":/icons/",
     "64.ico trayActive.png trayActive_attention.png trayActive_Play.png trayNotActive.png "
     "trayNotactive_attention.png trayNotactive_Play.png"},
    {":/icons/res/icons/",
     "calendar_icon.png pbarrow_left.png pbarrow_right.png pbTimeExtend_NoActive_Hovered.png "
     "pbTimeExtend_NoActive_normal.png pbTimeExtend_NoActive_Pressed.png spindown_hover.png "
     "spindown_normal.png spindown_pressed.png spinup_hover.png spinup_normal.png "
     "spinup_pressed.png"},
};

} // namespace

class TestResources : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void everyNameIsThereAndPicturesTwice();
    void theLineWithoutAColonSpoilsNothing();
};

void TestResources::initTestCase()
{
    initResources();
    installFonts();
    QCOMPARE(QFontInfo(QApplication::font()).family(), QStringLiteral("PT Sans"));
    QFile file(QStringLiteral(":/qss/main.qss"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    qApp->setStyleSheet(QString::fromUtf8(file.readAll()));
}

void TestResources::everyNameIsThereAndPicturesTwice()
{
    QStringList paths;
    for (const auto& [folder, folderNames] : names) {
        for (const QString& name : QString::fromLatin1(folderNames).split(QLatin1Char(' ')))
            paths += QLatin1String(folder) + name;
    }
    static const QRegularExpression url(QStringLiteral("url\\(\"?([^\")]*)\"?\\)"));
    for (auto it = url.globalMatch(qApp->styleSheet()); it.hasNext();)
        paths += it.next().captured(1);
    for (QString path : qAsConst(paths)) {
        QVERIFY2(QFile(path).size() > 0, qPrintable(path));
        if (!path.endsWith(QLatin1String(".png")))
            continue;
        const QSize size = QImage(path).size();
        path.insert(path.size() - 4, QLatin1String("@2x"));
        QVERIFY2(!size.isEmpty() && QImage(path).size() == size * 2, qPrintable(path));
    }
}

void TestResources::theLineWithoutAColonSpoilsNothing()
{
    QVERIFY(qApp->styleSheet().contains(QLatin1String("background-size 100%;")));
    QPushButton button;
    button.setObjectName(QStringLiteral("pbTessaport"));
    // The rule behind the line.
    button.setDown(true);
    QCOMPARE(button.grab().toImage().pixelColor(36, 1),
             QImage(QStringLiteral(":/images/pb-pressed.png")).pixelColor(36, 1));
}

TESSAPORT_TEST_MAIN(TestResources, QApplication)

#include "tst_resources.moc"
