// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <exception>
#include <memory>
#include <type_traits>
#include <vector>

#include <windows.h>

// A picture of all monitors by the Windows GDI alone, ready to take the place of the grab through
// Qt. Where the system refuses, an operation throws std::runtime_error; what was made until then is
// freed.

struct DeviceContextDeleter {
    void operator()(HDC context) const { DeleteDC(context); }
};
using DeviceContext = std::unique_ptr<std::remove_pointer_t<HDC>, DeviceContextDeleter>;

struct BitmapDeleter {
    void operator()(HBITMAP bitmap) const { DeleteObject(bitmap); }
};
using Bitmap = std::unique_ptr<std::remove_pointer_t<HBITMAP>, BitmapDeleter>;

/// The picture of one monitor.
struct DisplayEntry {
    /// A memory context in which the picture is selected.
    DeviceContext dc;
    /// The monitor's place on the virtual desktop.
    RECT rect;
};

/// The pictures of all monitors, in the system's order.
struct CDisplayHandlesPool {
    std::vector<DisplayEntry> displays;
    /// What ended the walk over the monitors before its time; null when nothing did.
    std::exception_ptr failure;
};

/// Fills `out` with a BMP file image, 32 bits a pixel, of the whole virtual desktop; gaps between
/// the monitors are black. On failure `out` holds nothing of use.
void CaptureAllDisplays(std::vector<unsigned char>& out);

// Its steps. Context and bitmap are in and out: what they held is freed when something else takes
// its place. `previous` becomes what was selected in the context before the bitmap.

/// Copies what the source context shows from (x, y) on into a new bitmap of the source's size.
void CaptureDesktop(HDC source, DeviceContext& destination, Bitmap& bitmap, HGDIOBJ& previous,
                    int& width, int& height, int x, int y);

/// Puts the pictures of the monitors together into a new bitmap of the virtual desktop's size.
void SpliceImages(const CDisplayHandlesPool& pool, DeviceContext& context, Bitmap& bitmap,
                  HGDIOBJ& previous, int& width, int& height);

/// Writes the bitmap as a BMP file image; `previous` is back in the context afterwards.
void CreateBitmapFinal(std::vector<unsigned char>& out, HDC context, HBITMAP bitmap,
                       HGDIOBJ previous, int width, int height);
