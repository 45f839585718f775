// SPDX-License-Identifier: GPL-3.0-or-later
bool IsAdult(int age);
int HalfFare(int fare);
extern const char Text[];
