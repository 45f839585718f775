// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Moves values between a form on a page and the program by the names of its elements. It knows nothing of any
// particular form.
#include "html/HtmlElement.h"

#include <map>
#include <variant>
#include <vector>

/// A typed value of a form field; kind 0 is undefined.
struct FormValue {
    enum Kind { Undefined = 0, Boolean = 1, Integer = 2, Real = 3, String = 4, Array = 5 };
    std::variant<std::monostate, bool, int, double, QString, std::vector<FormValue>> Value;

    FormValue() = default;
    explicit FormValue(bool value) : Value(value) {}
    explicit FormValue(int value) : Value(value) {}
    explicit FormValue(double value) : Value(value) {}
    explicit FormValue(const QString& value) : Value(value) {}
    explicit FormValue(std::vector<FormValue> value) : Value(std::move(value)) {}

    Kind GetKind() const { return static_cast<Kind>(Value.index()); }
    bool IsTrue() const { return GetKind() == Boolean && std::get<bool>(Value); }
    /// An integer, or a real with its fraction cut off; 0 for any other kind.
    int ToInteger() const;
};

/// Values by the name of their element, sorted by name.
using FormValues = std::map<QString, FormValue>;

/// Reads every named control below root; the first element of a name wins. False when there is none.
bool GetFormValues(const HtmlElement& root, FormValues& values);
/// Sets the first control of each name. False when none was set.
bool SetFormValues(const HtmlElement& root, const FormValues& values);
/// A check box alone gives a boolean, several of one name a mask, radio buttons the index of the checked one.
FormValue GetElementValue(const HtmlElement& element);
void SetElementValue(HtmlElement& element, const FormValue& value);
