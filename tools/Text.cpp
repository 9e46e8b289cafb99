// Converting texts with the C library's iconv.
#include "Text.h"

#include <iconv.h>

#include <algorithm>

namespace corvantis {
namespace {

// Empty if the bytes are no text of that encoding.
std::string ToUtf8(std::string_view bytes, const char* encoding) {
    iconv_t converter = iconv_open("UTF-8", encoding);
    if (converter == reinterpret_cast<iconv_t>(-1)) return {};
    std::string from(bytes), to(3 * bytes.size(), '\0');  // Mac OS Roman takes up to 3 bytes
    char* in = from.data();
    char* out = to.data();
    size_t inLeft = from.size(), outLeft = to.size();
    const bool done = iconv(converter, &in, &inLeft, &out, &outLeft) != static_cast<size_t>(-1);
    iconv_close(converter);
    to.resize(done ? to.size() - outLeft : 0);
    return to;
}

std::string ToAscii(std::string_view bytes) {
    std::string text(bytes);
    std::replace_if(
        text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; }, '?');
    return text;
}

bool IsControl(char c) { return (c >= 0 && c < ' ') || c == '\x7F'; }

// U+0080 to U+009F, which terminals take for commands as well, in UTF-8.
bool IsLongControl(const std::string& text, size_t i) {
    return text[i] == '\xC2' && i + 1 < text.size() &&
           static_cast<unsigned char>(text[i + 1]) < 0xA0;
}

std::string WithoutControls(const std::string& text) {
    std::string clean;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool isLong = IsLongControl(text, i);
        clean.push_back(isLong || IsControl(text[i]) ? ' ' : text[i]);
        if (isLong) ++i;
    }
    return clean;
}

}  // namespace

std::string DisplayText(std::string_view bytes) {
    const std::string_view text = bytes.substr(0, bytes.find('\0'));
    for (const char* encoding : {"UTF-8", "MACINTOSH"}) {
        if (const std::string utf8 = ToUtf8(text, encoding); !utf8.empty()) {
            return WithoutControls(utf8);
        }
    }
    return WithoutControls(ToAscii(text));
}

}  // namespace corvantis
