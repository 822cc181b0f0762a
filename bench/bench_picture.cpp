// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/ByTurns.h"
#include "bench/PeakMemory.h"
#include "capture/DesktopGrab.h"
#include "platform/Memory.h"
#include "res/Resources.h"
#include "service/ReportFile.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QBuffer>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QScreen>

#include <cstdio>
#include <jpeglib.h>
#include <string>

namespace {

/// A desktop with text all over it, a photo and bare ground.
QImage desktop(const QSize& size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(0xdf, 0xe6, 0xee));
    QPainter painter(&image);
    painter.fillRect(0, 0, size.width() * 2 / 3, size.height(), Qt::white);
    for (int y = 20; y < size.height(); y += 20)
        painter.drawText(10 + y % 60, y,
                         QStringLiteral("Сверстать карточку товара ").repeated(size.width() / 300));
    for (int y = 0; y < size.height() / 3; ++y) {
        for (int x = 0; x < size.width() / 4; ++x)
            image.setPixel(size.width() * 7 / 10 + x, 50 + y,
                           qRgb(x * y / 300, (x ^ y) & 0xff, y / 2 + x % 7));
    }
    return image;
}

void writeBarely(const QImage& image, const QByteArray& path)
{
    jpeg_compress_struct encoder;
    jpeg_error_mgr errors;
    encoder.err = jpeg_std_error(&errors);
    jpeg_create_compress(&encoder);
    FILE* const file = std::fopen(path.constData(), "wb");
    jpeg_stdio_dest(&encoder, file);
    encoder.image_width = JDIMENSION(image.width());
    encoder.image_height = JDIMENSION(image.height());
    encoder.input_components = 4;
    encoder.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&encoder);
    jpeg_set_quality(&encoder, 75, TRUE);
    jpeg_start_compress(&encoder, TRUE);
    while (encoder.next_scanline < encoder.image_height) {
        auto* line = const_cast<JSAMPLE*>(image.constScanLine(int(encoder.next_scanline)));
        jpeg_write_scanlines(&encoder, &line, 1);
    }
    jpeg_finish_compress(&encoder);
    jpeg_destroy_compress(&encoder);
    std::fclose(file);
}

/// From the desktop to the file of its picture; the floor is the same grab and the bare encoder at
/// the same quality. Counts the most memory that is held: by the grab, in sizes of the raw picture,
/// and beside the picture after the grab, in sizes of the file.
void picture(benchmark::State& state)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("screenshot.jpg"));
    const auto write = [&path](const QImage& image) {
        QBuffer jpeg;
        jpeg.open(QIODevice::WriteOnly);
        image.save(&jpeg, "JPG", -1);
        ReportFile::writePicture(path, jpeg.data());
    };
    QImage grabbed;
    const qint64 grabBytes = peakBytes([&] { grabbed = grabDesktop(); });
    write(grabbed);
    const auto size = double(QFileInfo(path).size());
    const double files = double(peakBytes([&] { write(grabbed); })) / size;
    const QByteArray barePath = directory.filePath(QStringLiteral("bare.jpg")).toLocal8Bit();
    compareByTurns(
        state, [&write] { write(grabDesktop()); },
        [&barePath] { writeBarely(grabDesktop(), barePath); });
    state.counters["raw pictures"] = double(grabBytes) / double(grabbed.sizeInBytes());
    state.counters["files"] = files;
    state.counters["bytes"] = size;
}

} // namespace

int main(int argc, char* argv[])
{
    platform::giveBackLargeBlocks();
    benchmark::Initialize(&argc, argv);
    TestHome home;
    QApplication application(argc, argv);
    initResources();
    installFonts();
    const QSize size = QGuiApplication::primaryScreen()->size();
    QLabel window(nullptr, Qt::X11BypassWindowManagerHint);
    window.setPixmap(QPixmap::fromImage(desktop(size)));
    window.move(0, 0);
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        return 1;
    const std::string name =
        "picture/" + std::to_string(size.width()) + "x" + std::to_string(size.height());
    benchmark::RegisterBenchmark(name.c_str(), picture)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::RunSpecifiedBenchmarks();
}
