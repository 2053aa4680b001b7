// Stands for the ink library: writes what it was asked into the sketch file.
#include <cstdio>
#include <string>

extern "C" unsigned char callInkRelay(int flag, const char16_t *path, int left, int top, int width,
                                      int height)
{
    const std::u16string wide(path);
    const std::string name(wide.begin(), wide.end());
    std::FILE *const file = std::fopen(name.c_str(), "wb");
    if (!file)
        return 0;
    std::fprintf(file, "%d %d %d %d %d", flag, left, top, width, height);
    std::fclose(file);
    return 0;
}
