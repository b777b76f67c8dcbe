// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The document's constraints on what a request holds. A rule looks at one value and tells a `Checks` what is
/// wrong; the generated `check` functions say which rule each member has.
namespace orvane {

/// For each member that was refused, by its path ("shares[0].percent"), sentences that a person can read.
using FieldErrors = std::map<std::string, std::vector<std::string>>;

/// Collects what is wrong, under the path of the member that is being looked at.
class Checks {
public:
    /// Applies a rule to a member; one without a value breaks none.
    template <class T, class Rule>
    void member(std::string_view name, const T &value, const Rule &rule)
    {
        const std::size_t outside = enter(name);
        apply(value, rule);
        m_path.resize(outside);
    }

    template <class T, class Rule>
    void item(std::size_t index, const T &value, const Rule &rule)
    {
        const std::size_t outside = enter(index);
        apply(value, rule);
        m_path.resize(outside);
    }

    /// Notes a sentence against the member that is being looked at.
    void refuse(std::string sentence);
    /// Notes a sentence against the member of that path, counted from the one being looked at.
    void refuse(std::string_view path, std::string sentence);

    const FieldErrors &errors() const { return m_errors; }
    FieldErrors takeErrors() { return std::move(m_errors); }

private:
    std::size_t enter(std::string_view name);
    std::size_t enter(std::size_t index);

    template <class T, class Rule>
    void apply(const T &value, const Rule &rule)
    {
        rule.apply(value, *this);
    }
    template <class T, class Rule>
    void apply(const std::optional<T> &value, const Rule &rule)
    {
        if (value)
            rule.apply(*value, *this);
    }

    std::string m_path;
    FieldErrors m_errors;
};

struct NoRule {
    template <class T>
    void apply(const T &, Checks &) const
    {
    }
};

/// Bounds on a text's length in Unicode code points.
struct TextRule {
    std::size_t minimum = 0;
    std::size_t maximum = std::numeric_limits<std::size_t>::max();

    void apply(const std::string &value, Checks &checks) const;
};

/// Bounds on a number, both of them allowed values.
struct NumberRule {
    double minimum = -std::numeric_limits<double>::infinity();
    double maximum = std::numeric_limits<double>::infinity();

    void apply(double value, Checks &checks) const;
    void apply(std::int64_t value, Checks &checks) const { apply(static_cast<double>(value), checks); }
};

/// A text that must be one of a few.
template <std::size_t Count>
struct ChoiceRule {
    std::array<std::string_view, Count> texts;

    void apply(const std::string &value, Checks &checks) const
    {
        std::string listed;
        for (const std::string_view text : texts) {
            if (text == value)
                return;
            listed += listed.empty() ? "" : ", ";
            listed += text;
        }
        checks.refuse("Must be one of: " + listed + ".");
    }
};

/// Bounds on a list's length, refused by sentence.
void checkCount(std::size_t count, std::size_t minimum, std::size_t maximum, Checks &checks);

/// Bounds on a list's length, and the rule that each of its items has.
template <class Item>
struct ListRule {
    std::size_t minimum = 0;
    std::size_t maximum = std::numeric_limits<std::size_t>::max();
    Item item{};

    template <class T>
    void apply(const std::vector<T> &value, Checks &checks) const
    {
        checkCount(value.size(), minimum, maximum, checks);
        // A list that is far too long is not worth a sentence for each item.
        for (std::size_t i = 0; i < value.size() && i < maximum; ++i)
            checks.item(i, value[i], item);
    }
};

/// Free-form JSON that must be an object.
struct ObjectRule {
    void apply(const RawJson &value, Checks &checks) const;
};

/// The constraints of a schema's own members.
struct SchemaRule {
    template <class T>
    void apply(const T &value, Checks &checks) const
    {
        check(value, checks);
    }
};

} // namespace orvane
