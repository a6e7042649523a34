#pragma once

#include <clocale>
#include <locale>
#include <string>

namespace zuvo::tests {

/// A desktop that writes 1.234,5 for 1234.5.
class CommaDigits : public std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

/// While it lives: the C++ locale with decimal commas, and the C library's too on machines that have such a one
/// installed.
class CommaLocale {
public:
    CommaLocale() {
        std::locale::global(std::locale(std::locale::classic(), new CommaDigits));
        for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8"})
            if (std::setlocale(LC_ALL, name) != nullptr)
                break;
    }
    ~CommaLocale() {
        std::setlocale(LC_ALL, "C");
        std::locale::global(m_before);
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

private:
    std::locale m_before;
};

} // namespace zuvo::tests
