#pragma once

#include <string>

#include "common/export.h"

namespace pwr {

class Data;

/// Turns a value into the text of a table cell: number, unit directly after it, then padded on the
/// left with blanks to the width. Numbers never follow the process's locale.
///
/// A value that the formatter's type cannot read gives 1 and an empty text; nothing throws.
/// Formatters are small value objects: whoever keeps one keeps a clone().
class KRCOMMON_API Formatter {
public:
    explicit constexpr Formatter(int width) noexcept : m_width(width) {}
    virtual ~Formatter();
    /// Replaces `out` by the value's text; 0, or 1 when the value cannot be read.
    virtual int format(std::string& out, const Data& value) const = 0;
    /// A copy on the heap that the caller owns.
    virtual Formatter* clone() const = 0;

    const std::string& getUnit() const { return m_unit; }
    bool isHex() const { return m_hex; }
    int getWidth() const { return m_width; }
    int getPrecision() const { return m_precision; }

    /// The conversions behind the classes below, usable with any formatter's settings. The three for
    /// numbers also take the range of their type: low end, " -- ", high end, and the unit once.
    static int formatInt(const Formatter& formatter, std::string& out, const Data& value);
    static int formatUInt(const Formatter& formatter, std::string& out, const Data& value);
    static int formatReal(const Formatter& formatter, std::string& out, const Data& value);
    static int formatIntRange(const Formatter& formatter, std::string& out, const Data& value);
    static int formatUIntRange(const Formatter& formatter, std::string& out, const Data& value);
    static int formatRealRange(const Formatter& formatter, std::string& out, const Data& value);
    static int formatString(const Formatter& formatter, std::string& out, const Data& value);
    /// A process prints its process number, a thread its thread number, other handles their name.
    static int formatHandle(const Formatter& formatter, std::string& out, const Data& value);
    /// Right-aligns within `width` characters; a longer text stays as it is.
    static void widen(std::string& text, int width);

protected:
    constexpr Formatter(int width, bool hex, int precision) noexcept
        : m_hex(hex), m_width(width), m_precision(precision) {}
    Formatter(const std::string& unit, int width, bool hex, int precision)
        : m_unit(unit), m_hex(hex), m_width(width), m_precision(precision) {}
    Formatter(const Formatter&) = default;
    Formatter& operator=(const Formatter&) = default;

private:
    int finish_i(std::string& out) const {
        if (!m_unit.empty()) out += m_unit;
        if (m_width > 0) widen(out, m_width);
        return 0;
    }

    std::string m_unit;
    bool m_hex = false;  // integers with "0x" in front, zero without
    int m_width = 0;     // 0: no padding
    int m_precision = 0; // digits after the point of reals
};

/// INT and INT_RANGE. Negative numbers in hexadecimal show their 16 digits of two's complement.
class KRCOMMON_API IntFormatter : public Formatter {
public:
    constexpr IntFormatter(int width, bool hex) noexcept : Formatter(width, hex, 0) {}
    IntFormatter(const std::string& unit, int width, bool hex) : Formatter(unit, width, hex, 0) {}
    ~IntFormatter() override;
    int format(std::string& out, const Data& value) const override;
    Formatter* clone() const override;
};

/// UINT and UINT_RANGE.
class KRCOMMON_API UIntFormatter : public Formatter {
public:
    constexpr UIntFormatter(int width, bool hex) noexcept : Formatter(width, hex, 0) {}
    UIntFormatter(const std::string& unit, int width, bool hex) : Formatter(unit, width, hex, 0) {}
    ~UIntFormatter() override;
    int format(std::string& out, const Data& value) const override;
    Formatter* clone() const override;
};

/// REAL and REAL_RANGE, in fixed notation, the same characters as printf's "%.*f" for every double.
class KRCOMMON_API RealFormatter : public Formatter {
public:
    constexpr RealFormatter(int width, int precision) noexcept : Formatter(width, false, precision) {}
    RealFormatter(const std::string& unit, int width, int precision)
        : Formatter(unit, width, false, precision) {}
    ~RealFormatter() override;
    int format(std::string& out, const Data& value) const override;
    Formatter* clone() const override;
};

/// STRING, as it is.
class KRCOMMON_API StringFormatter : public Formatter {
public:
    explicit constexpr StringFormatter(int width) noexcept : Formatter(width) {}
    ~StringFormatter() override;
    int format(std::string& out, const Data& value) const override;
    Formatter* clone() const override;
};

/// HANDLE: what the handle is called, see formatHandle().
class KRCOMMON_API HandleFormatter : public Formatter {
public:
    explicit constexpr HandleFormatter(int width) noexcept : Formatter(width) {}
    ~HandleFormatter() override;
    int format(std::string& out, const Data& value) const override;
    Formatter* clone() const override;
};

/// NONE: warns, writes "INVALID" and fails.
class KRCOMMON_API VoidFormatter : public Formatter {
public:
    constexpr VoidFormatter() noexcept : Formatter(0) {}
    ~VoidFormatter() override;
    int format(std::string& out, const Data& value) const override;
    Formatter* clone() const override;
};

} // namespace pwr
