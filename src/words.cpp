#include "words.h"

std::string_view trimright(std::string_view text)
{
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    return text;
}

std::string_view trim(std::string_view text)
{
    text = trimright(text);
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    return text;
}

std::string cuttext(std::string_view text, std::size_t width)
{
    return std::string(trimright(text.substr(0, width)));
}

namespace
{
std::string lowercased(std::string_view text)
{
    std::string lower(text);
    for (char &c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
}
} // namespace

std::string tlc(std::string_view text)
{
    return lowercased(trim(text).substr(0, pathwidth));
}

std::string parsestringwindows(std::string_view text)
{
    text = text.substr(0, pathwidth);
    return lowercased(text.substr(0, text.find(' ')));
}

std::string numbertext(int64 value)
{
    return std::to_string(value);
}

int64 countlines(infile &in)
{
    int64 nlines = 0;
    while (in.nextrecord())
        if (in.line().find_first_not_of(" \t\r") != std::string_view::npos) ++nlines;
    in.rewind();
    return nlines;
}

int64 countlines(const std::string &filename)
{
    infile in(filename);
    return countlines(in);
}
