// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Values of the host's registry as objects: reading gives the value or a default, assigning writes through,
// and the end of the object writes once more, so that a value that was only read comes into being with its
// default. A write that would change nothing is left out, because each one costs the host a file.
#include <QString>

/// Access to one kind of value; the specialisations know the host's calls.
template <class T>
struct RegistryAccess;

template <>
struct RegistryAccess<unsigned int> {
    static bool Read(const QString& root, const QString& path, unsigned int& value);
    static bool Write(const QString& root, const QString& path, unsigned int value);
};

template <>
struct RegistryAccess<QString> {
    static bool Read(const QString& root, const QString& path, QString& value);
    static bool Write(const QString& root, const QString& path, const QString& value);
};

/// The path without separators at either end; one at its end stays, as it means the key's default value.
QString RegistryPath(const QString& path);

template <class T>
class RegistryValue {
  public:
    /// With force set every read looks into the registry again. Roots: "HKEY_LOCAL_MACHINE",
    /// "HKEY_CURRENT_USER", "HKEY_CLASSES_ROOT".
    RegistryValue(const QString& path, const T& fallback, bool force, const QString& root)
        : root(root), path(RegistryPath(path)), value(fallback), fallback(fallback), force(force) {
        read();
    }
    ~RegistryValue() { write(); }
    RegistryValue(const RegistryValue&) = delete;
    RegistryValue& operator=(const RegistryValue&) = delete;

    T Get() {
        if (force) {
            read();
        }
        return value;
    }
    RegistryValue& operator=(const T& assigned) {
        const bool changed = !(assigned == value);
        value = assigned;
        if (changed || force) {
            write();
        }
        return *this;
    }

  private:
    void read() {
        if (!RegistryAccess<T>::Read(root, path, value)) {
            value = fallback;
        }
    }
    /// A registry that takes no writes is no reason to stop: the value is then as it was.
    void write() {
        T present{};
        if (!RegistryAccess<T>::Read(root, path, present) || !(present == value)) {
            RegistryAccess<T>::Write(root, path, value);
        }
    }

    QString root;
    QString path;
    T value;
    T fallback;
    bool force;
};

using RegistryDword = RegistryValue<unsigned int>;
using RegistryString = RegistryValue<QString>;
