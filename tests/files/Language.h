// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "text/CodePage.h"

#include <QByteArray>

#include <cstdlib>

/// The user's locale for the time of a test. The encoding of the locale is found once and stays UTF-8.
class Language {
  public:
    explicit Language(const char* name) : before(qgetenv("LC_ALL")) {
        LocaleEncoding();
        ::setenv("LC_ALL", name, 1);
    }
    Language(const Language&) = delete;
    Language& operator=(const Language&) = delete;
    ~Language() { before.isEmpty() ? ::unsetenv("LC_ALL") : ::setenv("LC_ALL", before.constData(), 1); }

  private:
    QByteArray before;
};
