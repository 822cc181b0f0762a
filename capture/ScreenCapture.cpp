// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/ScreenCapture.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace {

constexpr WORD bitmapSignature = 0x4D42;
constexpr DWORD pixelOffsetWithoutColours = 54;
constexpr std::size_t colourTableSize = 256;

struct BitmapInfo {
    BITMAPINFOHEADER header;
    RGBQUAD colours[colourTableSize];
};

bool selectFailed(HGDIOBJ previous)
{
    return previous == nullptr || previous == HGDI_ERROR;
}

DWORD colourEntries(const BITMAPINFOHEADER& header)
{
    if (header.biClrUsed != 0)
        return header.biClrUsed;
    if (header.biCompression == BI_BITFIELDS)
        return 3;
    return header.biBitCount <= 8 ? 1u << header.biBitCount : 0;
}

BOOL CALLBACK captureMonitor(HMONITOR, HDC source, LPRECT rect, LPARAM userData)
{
    auto* const pool = reinterpret_cast<CDisplayHandlesPool*>(userData);
    // The system's frames lie between here and the caller, and no exception may cross them.
    try {
        DeviceContext context;
        Bitmap bitmap;
        HGDIOBJ previous = nullptr;
        int width = 0;
        int height = 0;
        CaptureDesktop(source, context, bitmap, previous, width, height, rect->left, rect->top);
        pool->displays.push_back({std::move(context), *rect});
        DeleteDC(source);
        // The bitmap's handle goes here; the picture itself lives on in the context it is
        // selected in.
        return TRUE;
    } catch (...) {
        pool->failure = std::current_exception();
        return FALSE;
    }
}

} // namespace

// The contexts of GetDC and of the walk over the monitors are given back by DeleteDC; see
// docs/decisions.md.
void CaptureAllDisplays(std::vector<unsigned char>& out)
{
    // In the reverse of the order in which they are freed.
    DeviceContext context;
    Bitmap bitmap;
    CDisplayHandlesPool pool;

    DeviceContext screen(GetDC(nullptr));
    if (!screen)
        throw std::runtime_error("CDisplayHandlesPool: GetDC failed");
    if (!EnumDisplayMonitors(screen.get(), nullptr, captureMonitor,
                             reinterpret_cast<LPARAM>(&pool))) {
        if (pool.failure)
            std::rethrow_exception(pool.failure);
        throw std::runtime_error("CDisplayHandlesPool: EnumDisplayMonitors failed");
    }
    screen.reset();

    HGDIOBJ previous = nullptr;
    int width = 0;
    int height = 0;
    SpliceImages(pool, context, bitmap, previous, width, height);
    CreateBitmapFinal(out, context.get(), bitmap.get(), previous, width, height);
}

void CaptureDesktop(HDC source, DeviceContext& destination, Bitmap& bitmap, HGDIOBJ& previous,
                    int& width, int& height, int x, int y)
{
    width = GetDeviceCaps(source, HORZRES);
    height = GetDeviceCaps(source, VERTRES);

    DeviceContext newContext(CreateCompatibleDC(source));
    if (!newContext)
        throw std::runtime_error("CaptureDesktop: CreateCompatibleDC failed");
    destination = std::move(newContext);

    Bitmap newBitmap(CreateCompatibleBitmap(source, width, height));
    if (!newBitmap)
        throw std::runtime_error("CaptureDesktop: CreateCompatibleBitmap failed");
    bitmap = std::move(newBitmap);

    previous = SelectObject(destination.get(), bitmap.get());
    if (selectFailed(previous))
        throw std::runtime_error("CaptureDesktop: SelectObject failed");
    // CAPTUREBLT is what brings layered windows into the picture.
    if (!BitBlt(destination.get(), 0, 0, width, height, source, x, y, SRCCOPY | CAPTUREBLT))
        throw std::runtime_error("CaptureDesktop: BitBlt failed");
}

void SpliceImages(const CDisplayHandlesPool& pool, DeviceContext& context, Bitmap& bitmap,
                  HGDIOBJ& previous, int& width, int& height)
{
    const DeviceContext screen(GetDC(nullptr));
    width = GetSystemMetrics(SM_CXVIRTUALSCREEN);
    height = GetSystemMetrics(SM_CYVIRTUALSCREEN);

    DeviceContext newContext(CreateCompatibleDC(screen.get()));
    if (!newContext)
        throw std::runtime_error("SpliceImages: CreateCompatibleDC failed");
    context = std::move(newContext);

    Bitmap newBitmap(CreateCompatibleBitmap(screen.get(), width, height));
    if (!newBitmap)
        throw std::runtime_error("SpliceImages: CreateCompatibleBitmap failed");
    bitmap = std::move(newBitmap);

    previous = SelectObject(context.get(), bitmap.get());
    if (selectFailed(previous))
        throw std::runtime_error("SpliceImages: SelectObject failed");

    // From 0 on, so that monitors right of and below the origin keep their distance from it.
    LONG left = 0;
    LONG top = 0;
    for (const DisplayEntry& display : pool.displays) {
        left = std::min(left, display.rect.left);
        top = std::min(top, display.rect.top);
    }
    for (const DisplayEntry& display : pool.displays) {
        const RECT& rect = display.rect;
        if (!BitBlt(context.get(), rect.left - left, rect.top - top, rect.right - rect.left,
                    rect.bottom - rect.top, display.dc.get(), 0, 0, SRCCOPY))
            throw std::runtime_error("SpliceImages: BitBlt failed");
    }
}

void CreateBitmapFinal(std::vector<unsigned char>& out, HDC context, HBITMAP bitmap,
                       HGDIOBJ previous, int width, int height)
{
    BitmapInfo info = {};
    info.header.biSize = sizeof(BITMAPINFOHEADER);
    info.header.biWidth = width;
    info.header.biHeight = height;
    info.header.biPlanes = 1;
    info.header.biBitCount = 32;
    auto* const bitmapInfo = reinterpret_cast<BITMAPINFO*>(&info);
    const UINT lines = static_cast<UINT>(height);

    // GetDIBits reads only a bitmap that is selected nowhere.
    SelectObject(context, previous);
    if (!GetDIBits(context, bitmap, 0, lines, nullptr, bitmapInfo, DIB_RGB_COLORS))
        throw std::runtime_error("CreateBitmapFinal: GetDIBits failed");

    const DWORD pixelOffset =
        pixelOffsetWithoutColours + sizeof(RGBQUAD) * colourEntries(info.header);
    out.assign(pixelOffset + info.header.biSizeImage, 0);

    BITMAPFILEHEADER fileHeader = {};
    fileHeader.bfType = bitmapSignature;
    // The pixels alone, without the headers; see docs/decisions.md.
    fileHeader.bfSize = info.header.biSizeImage;
    fileHeader.bfOffBits = pixelOffset;
    std::memcpy(out.data(), &fileHeader, sizeof(fileHeader));

    if (!GetDIBits(context, bitmap, 0, lines, out.data() + pixelOffset, bitmapInfo, DIB_RGB_COLORS))
        throw std::runtime_error("CreateBitmapFinal: GetDIBits failed");
    std::memcpy(out.data() + sizeof(fileHeader), &info.header, sizeof(info.header));
}
