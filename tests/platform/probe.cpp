// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdio>

/// A process to look for: with arguments it writes them to a file, a line each, and ends; without
/// any it lives until its standard input is closed.
int main(int argc, char* argv[])
{
    if (argc == 1) {
        while (std::getchar() != EOF) { }
        return 0;
    }
    std::FILE* const file = std::fopen("arguments.txt", "w");
    if (!file)
        return 1;
    for (int i = 1; i < argc; ++i)
        std::fprintf(file, "%s\n", argv[i]);
    return std::fclose(file);
}
