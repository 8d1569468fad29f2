// SPDX-License-Identifier: ISC
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The text type of the whole program: a handle to a shared, immutable UTF-8 byte string.
///
/// A copy shares the bytes, so copies are cheap and texts may be handed between threads. Every
/// operation that changes a text returns a new one. All lengths and positions are in bytes; nothing
/// looks at the encoding.
///
/// A default-constructed text is *null*: it has length 0 and behaves as an empty text everywhere,
/// but it differs by `==` and sorts before every other text, the empty one included. Compare
/// lengths, or ask IsEmpty(), where the difference doesn't matter.
///
/// Threads: [any]; one object is not assigned while another thread reads it. Texts allocate, so
/// that the processing side makes none.
class String {
public:
    /// Base and width of a number turned into text.
    static constexpr uint32_t DefaultBase = 10;

    /// The null text.
    String() noexcept = default;
    /// Copies a NUL-terminated text; a null pointer gives the null text.
    String(const char* text); // NOLINT(google-explicit-constructor): literals are texts
    /// Copies the bytes; the result is never null, but may be empty.
    String(std::string_view text); // NOLINT(google-explicit-constructor): views are texts
    /// Takes the bytes over; the result is never null, but may be empty.
    String(std::string text); // NOLINT(google-explicit-constructor): strings are texts

    /// Fills one placeholder. Placeholders are "%" and one digit: the lowest digit is filled, of
    /// several equal ones the leftmost, so "%1->%1" takes two calls. Without a placeholder `text`
    /// is appended. Text that was filled in is searched by the next call as well.
    [[nodiscard]] String arg(const String& text) const;
    /// Fills a placeholder by a number. `base` is 2 to 36, anything else counts as 10; digits above
    /// 9 are upper case. Shorter numbers are filled up to `padding` characters with zeros behind
    /// the sign.
    [[nodiscard]] String
    arg(int32_t number, uint32_t base = DefaultBase, uint32_t padding = 0) const;
    [[nodiscard]] String
    arg(uint32_t number, uint32_t base = DefaultBase, uint32_t padding = 0) const;
    /// Like the 32-bit form, but base 16 shows the 64-bit pattern of a negative number.
    [[nodiscard]] String
    arg(int64_t number, uint32_t base = DefaultBase, uint32_t padding = 0) const;
    [[nodiscard]] String
    arg(uint64_t number, uint32_t base = DefaultBase, uint32_t padding = 0) const;

    [[nodiscard]] uint32_t Length() const noexcept;
    [[nodiscard]] bool IsNull() const noexcept { return content == nullptr; }
    [[nodiscard]] bool IsEmpty() const noexcept { return Length() == 0; }

    /// First position of `text` at or behind `start`. A `start` at or past the end finds nothing,
    /// also for an empty `text`. Without case, ASCII letters match either way.
    [[nodiscard]] std::optional<uint32_t>
    Find(const String& text, uint32_t start = 0, bool caseSensitive = true) const;
    /// The first `count` bytes, or all when there are fewer.
    [[nodiscard]] String Left(uint32_t count) const;
    /// At most `count` bytes from `start` on; empty when `start` is past the end.
    [[nodiscard]] String Mid(uint32_t start, uint32_t count = UINT32_MAX) const;
    /// ASCII letters lower-cased, all other bytes as they are.
    [[nodiscard]] String ToLower() const;
    [[nodiscard]] bool StartsWith(const String& prefix) const noexcept;
    /// The parts between the separators, empty ones included: always one more than separators.
    [[nodiscard]] std::vector<String> Split(char separator) const;

    /// The bytes, NUL-terminated; "" for the null text. Lives as long as any copy of this text.
    [[nodiscard]] const char* c_str() const noexcept;
    /// Same as c_str(); Length() bytes count.
    [[nodiscard]] const char* Data() const noexcept { return c_str(); }
    /// Lives as long as any copy of this text.
    [[nodiscard]] std::string_view View() const noexcept { return {c_str(), Length()}; }
    [[nodiscard]] std::string ToStdString() const { return std::string(View()); }

    friend String operator+(const String& left, const String& right);
    friend bool operator==(const String& left, const String& right) noexcept;
    /// Byte-wise with unsigned bytes; null first.
    friend std::strong_ordering operator<=>(const String& left, const String& right) noexcept;

private:
    std::shared_ptr<const std::string> content; // never an object that is changed; null is null
};

static_assert(sizeof(String) == 2 * sizeof(void*));

template <>
struct std::hash<String> {
    std::size_t operator()(const String& text) const noexcept
    {
        return std::hash<std::string_view>()(text.View());
    }
};
