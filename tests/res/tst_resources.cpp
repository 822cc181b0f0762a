// SPDX-License-Identifier: GPL-3.0-or-later
#include "res/Resources.h"
#include "support/Files.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QDirIterator>
#include <QFontDatabase>
#include <QFontInfo>
#include <QPushButton>

namespace {

/// The resources that the windows' code, forms and style sheet name as a whole, and all that there
/// is a drawing of: some names are put together, and some are for others.
QSet<QString> namedResources()
{
    const QRegularExpression name(QStringLiteral(R"(:/[\w/]+/[\w-]+\.\w+)"));
    QSet<QString> names;
    for (const char* folder : {"app", "dialogs", "mainwindow", "notifications", "res"}) {
        QDirIterator files(
            QStringLiteral(TEST_SOURCE_DIR "/../../") + QLatin1String(folder),
            {QStringLiteral("*.cpp"), QStringLiteral("*.ui"), QStringLiteral("*.qss")}, QDir::Files,
            QDirIterator::Subdirectories);
        while (files.hasNext()) {
            auto match = name.globalMatch(QString::fromUtf8(contentOf(files.next())));
            while (match.hasNext())
                names.insert(match.next().captured());
        }
    }
    const QDir folder(QStringLiteral(TEST_SOURCE_DIR "/../../art/svg"));
    QDirIterator drawings(folder.path(), {QStringLiteral("*.svg")}, QDir::Files,
                          QDirIterator::Subdirectories);
    while (drawings.hasNext()) {
        const QFileInfo file(folder.relativeFilePath(drawings.next()));
        // The application's own icon is one file with all sizes.
        const QString form =
            file.baseName() == QLatin1String("64") ? QStringLiteral("ico") : QStringLiteral("png");
        names.insert(QStringLiteral(":/%1/%2.%3").arg(file.path(), file.baseName(), form));
    }
    return names;
}

} // namespace

class ResourcesTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        initResources();
        installFonts();
        QCOMPARE(QFontInfo(QApplication::font()).family(), QStringLiteral("PT Sans"));
        QVERIFY(QFontDatabase().styles(QStringLiteral("PT Sans")).contains(QStringLiteral("Bold")));
        qApp->setStyleSheet(QString::fromUtf8(contentOf(QStringLiteral(":/qss/main.qss"))));
    }

    // On a scaled screen, too.
    void everyNameIsThereAndPicturesTwice()
    {
        const int factor = qApp->devicePixelRatio() > 1 ? 2 : 1;
        const QSet<QString> names = namedResources();
        QVERIFY(names.size() > 60);
        for (QString path : names) {
            QVERIFY2(QFile(path).size() > 0, qPrintable(path));
            if (!path.endsWith(QLatin1String(".png")))
                continue;
            const QSize size = QImage(path).size();
            const QPixmap shown = picture(path);
            QVERIFY2(shown.size() == size * factor, qPrintable(path));
            QVERIFY2(shown.devicePixelRatio() == factor, qPrintable(path));
            path.insert(path.size() - 4, QLatin1String("@2x"));
            QVERIFY2(!size.isEmpty() && QImage(path).size() == size * 2, qPrintable(path));
        }
    }

    void theLineWithoutAColonSpoilsNothing()
    {
        QVERIFY(qApp->styleSheet().contains(QLatin1String("background-size 100%;")));
        QPushButton button;
        button.setObjectName(QStringLiteral("pbTessaport"));
        // The rule behind the line.
        button.setDown(true);
        QCOMPARE(button.grab().toImage().pixelColor(36, 1),
                 QImage(QStringLiteral(":/images/pb-pressed.png")).pixelColor(36, 1));
    }
};

TESSAPORT_TEST_MAIN(ResourcesTest, QApplication)

#include "tst_resources.moc"
