// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Wrapper of the host's chain of typed values: indexed access and one place that frees it.
#include "resbuf.h"

#include <QString>
#include <vector>

/// Owns a chain of the host (or looks at one that it was told not to own). Movable, not copyable.
/// Access past the end shows the message "ResBuf: Index out of range." on the command line and gives a
/// neutral value.
class ResBuf {
  public:
    ResBuf() = default;
    /// Takes a chain over; with owns false it stays the caller's.
    explicit ResBuf(resbuf* chain, bool owns = true);
    ResBuf(ResBuf&& other) noexcept;
    ResBuf& operator=(ResBuf&& other) noexcept;
    ~ResBuf();

    /// Reads a system variable into one node; the host's result code.
    int GetVar(const QString& name);
    /// Takes the arguments of the running LISP function.
    void GetArgs();
    void AddString(const QString& text);
    void AddShort(int value);
    void AddBool(bool value);

    int Count() const { return static_cast<int>(nodes.size()); }
    bool IsEmpty() const { return nodes.empty(); }
    /// Result type of element n, RTNONE past the end.
    int Type(int index) const;
    bool IsType(int index, int type) const { return Type(index) == type; }
    QString String(int index) const;
    /// Short, long or (truncated) real value.
    int Integer(int index) const;
    double Real(int index) const;
    void RemoveAt(int index);
    void Clear();

    /// Sets a system variable to element 0; the host's result code.
    int SetVar(const QString& name) const;
    /// Sets a LISP symbol to the chain.
    int PutSym(const QString& name) const;
    const resbuf* Head() const { return head; }

  private:
    void append(resbuf* node);
    void index();
    bool checked(int index) const;

    resbuf* head = nullptr;
    std::vector<resbuf*> nodes;
    bool owned = true;
};
