/// The value of a hexadecimal digit of either case, or -1. The locale has no say in it.
#pragma once

constexpr int hexDigit(char character)
{
    if (character >= '0' && character <= '9') return character - '0';
    if (character >= 'a' && character <= 'f') return character - 'a' + 10;
    if (character >= 'A' && character <= 'F') return character - 'A' + 10;
    return -1;
}
