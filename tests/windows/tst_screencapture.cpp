// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/ScreenCapture.h"

#include "support/TestMain.h"

#include <QGuiApplication>
#include <QImage>

#include <functional>

namespace {

constexpr int headersSize = 54;

quint32 littleEndian(const std::vector<unsigned char>& bytes, std::size_t offset)
{
    return qFromLittleEndian<quint32>(bytes.data() + offset);
}

/// A monitor's picture of one colour.
DisplayEntry display(const RECT& rect, COLORREF colour)
{
    const DeviceContext screen(GetDC(nullptr));
    DisplayEntry entry{DeviceContext(CreateCompatibleDC(screen.get())), rect};
    const int width = rect.right - rect.left;
    const int height = rect.bottom - rect.top;
    // Lives as long as the context it is selected in.
    const Bitmap bitmap(CreateCompatibleBitmap(screen.get(), width, height));
    SelectObject(entry.dc.get(), bitmap.get());
    const HBRUSH brush = CreateSolidBrush(colour);
    const RECT whole{0, 0, width, height};
    FillRect(entry.dc.get(), &whole, brush);
    DeleteObject(brush);
    return entry;
}

/// What a step throws; empty when it does not.
QByteArray failureOf(const std::function<void()>& step)
{
    try {
        step();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return {};
}

} // namespace

class ScreenCaptureTest : public QObject {
    Q_OBJECT

private slots:
    void knownPicture();
    void monitorLeftOfTheFirst();
    void failures();
};

// The script that starts this test has put the picture on the screen.
void ScreenCaptureTest::knownPicture()
{
    QImage known(qEnvironmentVariable("TESSAPORT_KNOWN_PICTURE"));
    QVERIFY(!known.isNull());
    known = known.convertToFormat(QImage::Format_RGB32);

    std::vector<unsigned char> file;
    CaptureAllDisplays(file);
    QCOMPARE(QByteArray(reinterpret_cast<const char*>(file.data()), 2), QByteArrayLiteral("BM"));
    const quint32 pixelBytes = quint32(known.width()) * quint32(known.height()) * 4;
    QCOMPARE(littleEndian(file, 2), pixelBytes);
    QCOMPARE(littleEndian(file, 10), quint32(headersSize));
    QCOMPARE(littleEndian(file, 14), quint32(sizeof(BITMAPINFOHEADER)));
    QCOMPARE(file.size(), std::size_t(headersSize) + pixelBytes);

    const QImage captured = QImage::fromData(file.data(), int(file.size()), "BMP");
    QCOMPARE(captured.convertToFormat(QImage::Format_RGB32), known);
}

void ScreenCaptureTest::monitorLeftOfTheFirst()
{
    CDisplayHandlesPool pool;
    pool.displays.push_back(display({0, 0, 50, 60}, RGB(255, 0, 0)));
    pool.displays.push_back(display({-40, -10, -20, 30}, RGB(0, 255, 0)));
    DeviceContext context;
    Bitmap bitmap;
    HGDIOBJ previous = nullptr;
    int width = 0;
    int height = 0;
    SpliceImages(pool, context, bitmap, previous, width, height);

    QCOMPARE(width, GetSystemMetrics(SM_CXVIRTUALSCREEN));
    QCOMPARE(height, GetSystemMetrics(SM_CYVIRTUALSCREEN));
    QCOMPARE(GetPixel(context.get(), 0, 0), RGB(0, 255, 0));
    QCOMPARE(GetPixel(context.get(), 19, 39), RGB(0, 255, 0));
    QCOMPARE(GetPixel(context.get(), 30, 20), RGB(0, 0, 0));
    QCOMPARE(GetPixel(context.get(), 40, 9), RGB(0, 0, 0));
    QCOMPARE(GetPixel(context.get(), 40, 10), RGB(255, 0, 0));
    QCOMPARE(GetPixel(context.get(), 89, 69), RGB(255, 0, 0));

    // Those right of the origin keep their distance from it.
    CDisplayHandlesPool right;
    right.displays.push_back(display({30, 20, 50, 60}, RGB(0, 0, 255)));
    SpliceImages(right, context, bitmap, previous, width, height);
    QCOMPARE(GetPixel(context.get(), 0, 0), RGB(0, 0, 0));
    QCOMPARE(GetPixel(context.get(), 30, 20), RGB(0, 0, 255));
}

// Those of its texts that can be brought about from here; the others are the system's to fail.
void ScreenCaptureTest::failures()
{
    DeviceContext context;
    Bitmap bitmap;
    HGDIOBJ previous = nullptr;
    int width = 0;
    int height = 0;
    QCOMPARE(failureOf([&] {
                 CaptureDesktop(reinterpret_cast<HDC>(quintptr(0xdead)), context, bitmap, previous,
                                width, height, 0, 0);
             }),
             QByteArray("CaptureDesktop: CreateCompatibleDC failed"));
    CDisplayHandlesPool withoutPicture;
    withoutPicture.displays.push_back({DeviceContext(), {0, 0, 10, 10}});
    QCOMPARE(
        failureOf([&] { SpliceImages(withoutPicture, context, bitmap, previous, width, height); }),
        QByteArray("SpliceImages: BitBlt failed"));
    std::vector<unsigned char> file;
    const DeviceContext empty(CreateCompatibleDC(nullptr));
    QCOMPARE(failureOf([&] { CreateBitmapFinal(file, empty.get(), nullptr, nullptr, 10, 10); }),
             QByteArray("CreateBitmapFinal: GetDIBits failed"));
}

TESSAPORT_TEST_MAIN(ScreenCaptureTest, QGuiApplication)
#include "tst_screencapture.moc"
