// SPDX-License-Identifier: GPL-3.0-or-later
#include "res/Resources.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QDirIterator>
#include <QFile>
#include <QFontInfo>
#include <QIcon>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>

namespace {

struct Folder {
    const char* prefix;
    QVector<const char*> names;
};

/// The names that the windows and the style sheet rely on.
const QVector<Folder> folders = {
    {":/qss/", {"main.qss"}},
    {":/fonts/res/fonts/", {"TAHOMA.TTF", "TAHOMABD.TTF"}},
    {":/images/",
     {"bg_notifications_withLogo.png",
      "le.png",
      "login.png",
      "logo.png",
      "main.png",
      "pb-hover.png",
      "pb-pressed.png",
      "pb.png",
      "pbAttention_Active_clicked.png",
      "pbAttention_Active_Hovered.png",
      "pbAttention_Active_normal.png",
      "pbAttention_NoActive_clicked.png",
      "pbAttention_NoActive_Hoveredl.png",
      "pbAttention_NoActive_normal.png",
      "pbComment.png",
      "pbLoginClose-hover.png",
      "pbLoginClose-pressed.png",
      "pbLoginClose.png",
      "pbMenu-hover.png",
      "pbMenu-pressed.png",
      "pbMenu.png",
      "pbMinimize-hover.png",
      "pbMinimize-pressed.png",
      "pbMinimize.png",
      "pbPause_Disabled.png",
      "pbPause_Offline.png",
      "pbPause_Offline_hovered.png",
      "pbPause_Offline_hovered_clicked.png",
      "pbPause_Online.png",
      "pbPause_Online_hovered.png",
      "pbPause_Online_hovered_clicked.png",
      "pbPlay_Disabled.png",
      "pbPlay_Offline.png",
      "pbPlay_Offline_hovered.png",
      "pbPlay_Offline_hovered_clicked.png",
      "pbPlay_Online.png",
      "pbPlay_Online_hovered.png",
      "pbPlay_Online_hovered_clicked.png",
      "pbTask.png",
      "pbTaskBlocked.png",
      "pbTaskUrgent.png",
      "pbTaskUrgentGrey.png",
      "wlogin-top.png"}},
    {":/images/res/images/",
     {"big_fon.png", "hide_icon.png", "kalendar_fon.png", "reasonLabel.png", "timeLabel.png",
      "TP.png"}},
    {":/images/res/images/task_desc_dialog/",
     {"attachment_icon.png", "back_button.png", "descr_button.png", "descr_button_hovered.png",
      "descr_button_pressed.png"}},
    {":/images/res/images/task_list_dialog/",
     {"task_target_button.png", "task_target_button_hovered.png",
      "task_target_button_pressed.png"}},
    {":/icons/",
     {"64.ico", "trayActive.png", "trayActive_attention.png", "trayActive_Play.png",
      "trayNotActive.png", "trayNotactive_attention.png", "trayNotactive_Play.png"}},
    {":/icons/res/icons/",
     {"calendar_icon.png", "pbarrow_left.png", "pbarrow_right.png",
      "pbTimeExtend_NoActive_Hovered.png", "pbTimeExtend_NoActive_normal.png",
      "pbTimeExtend_NoActive_Pressed.png", "spindown_hover.png", "spindown_normal.png",
      "spindown_pressed.png", "spinup_hover.png", "spinup_normal.png", "spinup_pressed.png"}},
};

QString styleSheet()
{
    QFile file(QStringLiteral(":/qss/main.qss"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// The picture of a widget that the style sheet has been applied to.
QImage polished(QWidget& widget)
{
    widget.ensurePolished();
    return widget.grab().toImage();
}

} // namespace

class TestResources : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        initResources();
        installFonts();
        installPalette();
        qApp->setStyleSheet(styleSheet());
    }

    void everyNameIsThere()
    {
        QStringList missing;
        for (const Folder& folder : folders) {
            for (const char* name : folder.names) {
                const QString resource = QLatin1String(folder.prefix) + QLatin1String(name);
                if (QFile(resource).size() == 0)
                    missing += resource;
            }
        }
        QCOMPARE(missing, QStringList());
    }

    void everyPictureHasATwinOfTwiceTheSize()
    {
        const QString twinMark = QStringLiteral("@2x");
        int count = 0;
        for (const char* root : {":/images", ":/icons"}) {
            QDirIterator it(QLatin1String(root), {QStringLiteral("*.png")}, QDir::Files,
                            QDirIterator::Subdirectories);
            while (it.hasNext()) {
                QString twin = it.next();
                if (twin.contains(twinMark))
                    continue;
                const QImage image(twin);
                const QImage twinImage(twin.insert(twin.size() - 4, twinMark));
                QVERIFY2(!image.isNull(), qPrintable(it.filePath()));
                QVERIFY2(twinImage.size() == image.size() * 2, qPrintable(twin));
                ++count;
            }
        }
        QVERIFY(count >= 75);
    }

    void theApplicationIconHasTheUsualSizes()
    {
        QList<int> widths;
        const QIcon icon(QStringLiteral(":/icons/64.ico"));
        for (const QSize& size : icon.availableSizes())
            widths += size.width();
        QCOMPARE(widths, QList<int>({16, 24, 32, 48, 64, 256}));
    }

    void everyPictureOfTheStyleSheetIsThere()
    {
        static const QRegularExpression url(QStringLiteral("url\\(\"?([^\")]*)\"?\\)"));
        QRegularExpressionMatchIterator it = url.globalMatch(styleSheet());
        QVERIFY(it.hasNext());
        while (it.hasNext()) {
            const QString resource = it.next().captured(1);
            QVERIFY2(!QPixmap(resource).isNull(), qPrintable(resource));
        }
    }

    void theLineWithoutAColonSpoilsNothing()
    {
        QVERIFY(styleSheet().contains(QLatin1String("background-size 100%;")));
        QPushButton button;
        button.setObjectName(QStringLiteral("pbTessaport"));
        const QColor resting = polished(button).pixelColor(36, 1);
        QCOMPARE(button.size(), QSize(73, 23));
        QCOMPARE(button.palette().color(QPalette::ButtonText), QColor(0x90, 0x70, 0x2C));

        // The rule behind the line.
        button.setDown(true);
        QVERIFY(polished(button).pixelColor(36, 11) != resting);
        QCOMPARE(polished(button).pixelColor(36, 1),
                 QImage(QStringLiteral(":/images/pb-pressed.png")).pixelColor(36, 1));
    }

    void theStyleSheetIsReadToItsEnd()
    {
        QProgressBar bar;
        bar.setObjectName(QStringLiteral("progressBar"));
        bar.resize(100, 20);
        bar.setTextVisible(false);
        bar.setValue(100);
        const QColor chunk = polished(bar).pixelColor(50, 10);
        QVERIFY(chunk.red() > 0xA0 && chunk.green() < 0x20);

        QWidget box;
        box.setObjectName(QStringLiteral("wTop"));
        box.ensurePolished();
        QCOMPARE(box.maximumHeight(), 40);

        QLineEdit edit;
        edit.setObjectName(QStringLiteral("lbEmail"));
        edit.ensurePolished();
        QCOMPARE(edit.maximumSize(), QSize(212, 21));
    }

    void theFontIsTheOneBuiltIn()
    {
        const QFontInfo font(QApplication::font());
        QCOMPARE(font.family(), QStringLiteral("PT Sans"));
        QCOMPARE(font.pixelSize(), 12);
    }
};

TESSAPORT_TEST_MAIN(TestResources, QApplication)

#include "tst_resources.moc"
