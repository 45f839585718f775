// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Names of files as text. A name is bytes and may hold anything: what is no UTF-8 can stand neither in the
// state nor in the host's input, and what a terminal obeys must not reach it out of a name.
#include <string>
#include <string_view>

bool IsUtf8(std::string_view text);

/// The text with each byte that is no UTF-8 spelled out as "\xE9", and the bytes of such a text again.
std::string SpelledOut(std::string_view text);
std::string BytesOf(std::string_view spelledOut);

/// For terminals and for messages of one line: line ends and other control characters are spelled out too.
std::string ShownText(std::string_view text);

/// One line to standard output: as ShownText on a terminal, as it is for programs.
void PrintName(const std::string& name);

/// One line to standard error, as ShownText.
void Complain(std::string_view text);
