// SPDX-License-Identifier: MIT
#pragma once

#include <windows.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

/// What a window shows at a moment, row by row from the top, four bytes a pixel.
struct Screenshot {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    friend bool operator==(const Screenshot&, const Screenshot&) = default;

    [[nodiscard]] std::uint32_t pixel(int x, int y) const
    {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)] &
               0xFFFFFF;
    }

    /// Of the inside of a window, as it stands: nothing is painted anew for it.
    static Screenshot of(HWND window)
    {
        RECT inside{};
        ::GetClientRect(window, &inside);
        Screenshot result{inside.right, inside.bottom, {}};
        BITMAPINFO shape{};
        shape.bmiHeader = {sizeof shape.bmiHeader, result.width, -result.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        const HDC from = ::GetDC(window);
        ::SetLayout(from, 0); // as it stands on the screen, mirrored or not
        const HDC to = ::CreateCompatibleDC(from);
        void* bits = nullptr;
        const HBITMAP copy = ::CreateDIBSection(to, &shape, DIB_RGB_COLORS, &bits, nullptr, 0);
        const HGDIOBJ before = ::SelectObject(to, copy);
        ::BitBlt(to, 0, 0, result.width, result.height, from, 0, 0, SRCCOPY);
        ::GdiFlush();
        const auto* first = static_cast<const std::uint32_t*>(bits);
        result.pixels.assign(first, first + static_cast<std::size_t>(result.width * result.height));
        ::SelectObject(to, before);
        ::DeleteObject(copy);
        ::DeleteDC(to);
        ::ReleaseDC(window, from);
        return result;
    }

    /// Puts it into the folder that KEL_SCREENSHOTS names, as a bitmap; nothing without one.
    void save(const std::string& name) const
    {
        const char* const folder = std::getenv("KEL_SCREENSHOTS");
        if (!folder)
            return;
        BITMAPINFOHEADER shape{sizeof shape, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        BITMAPFILEHEADER head{};
        head.bfType = 0x4D42;
        head.bfOffBits = sizeof head + sizeof shape;
        head.bfSize = static_cast<DWORD>(head.bfOffBits + 4 * pixels.size());
        std::ofstream file(std::string(folder) + "\\" + name + ".bmp", std::ios::binary);
        file.write(reinterpret_cast<const char*>(&head), sizeof head);
        file.write(reinterpret_cast<const char*>(&shape), sizeof shape);
        file.write(reinterpret_cast<const char*>(pixels.data()), static_cast<std::streamsize>(4 * pixels.size()));
    }
};
