// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestMain.h"

#include <QApplication>
#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>
#include <QSslSocket>
#include <QStyle>

// What comes out of plugins elsewhere has to be in the one file here.
class StaticPluginsTest : public QObject {
    Q_OBJECT

private slots:
    void platform() { QCOMPARE(QGuiApplication::platformName(), QStringLiteral("windows")); }
    void style() { QCOMPARE(QApplication::style()->objectName(), QStringLiteral("windowsvista")); }
    void icons() { QVERIFY(QImageReader::supportedImageFormats().contains("ico")); }
    void jpeg();
    void tls();
};

void StaticPluginsTest::jpeg()
{
    QImage image(64, 48, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QVERIFY(image.save(&buffer, "JPG"));
    QCOMPARE(QImage::fromData(buffer.data(), "JPG").size(), image.size());
}

void StaticPluginsTest::tls()
{
    QVERIFY(QSslSocket::supportsSsl());
    QVERIFY2(QSslSocket::sslLibraryVersionString().startsWith(QLatin1String("Secure Channel")),
             qPrintable(QSslSocket::sslLibraryVersionString()));
}

TESSAPORT_TEST_MAIN(StaticPluginsTest, QApplication)
#include "tst_staticplugins.moc"
