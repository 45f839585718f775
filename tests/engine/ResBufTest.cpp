// SPDX-License-Identifier: GPL-3.0-or-later
// The wrapper of the host's chains: every kind of value by its index, elements dropped, and past the end.
#include "engine/record/ResBuf.h"

#include "acutads.h"
#include "tests/recording/RecordingHost.h"

#include <gtest/gtest.h>

namespace {

ResBuf sample() {
    return ResBuf(acutBuildList(RTSTR, u"text", RTSHORT, 7, RTREAL, 2.75, RTT, RTNONE));
}

TEST(ResBuf, ValuesOfEveryKind) {
    const ResBuf chain = sample();
    ASSERT_EQ(chain.Count(), 4);
    EXPECT_EQ(chain.String(0), QStringLiteral("text"));
    EXPECT_EQ(chain.Integer(1), 7);
    EXPECT_EQ(chain.Real(1), 7.0);
    EXPECT_EQ(chain.Real(2), 2.75);
    EXPECT_EQ(chain.Integer(2), 2);
    EXPECT_TRUE(chain.IsType(3, RTT));
    EXPECT_EQ(chain.String(1), QString()) << "no text";
    RecordingHost::Get().Reset();
    EXPECT_EQ(chain.Integer(4) + chain.Real(-1), 0);
    EXPECT_EQ(chain.Type(4), RTNONE);
    EXPECT_EQ(RecordingHost::Get().Printed,
              QStringLiteral("ResBuf: Index out of range.\nResBuf: Index out of range.\n"));
}

TEST(ResBuf, DroppedElementsLeaveTheChainWhole) {
    ResBuf chain = sample();
    chain.RemoveAt(1);
    ASSERT_EQ(chain.Count(), 3);
    EXPECT_EQ(chain.Real(1), 2.75);
    EXPECT_EQ(chain.Head()->rbnext->restype, RTREAL);
    chain.RemoveAt(0);
    EXPECT_EQ(chain.Head()->restype, RTREAL);
    chain.AddShort(5);
    EXPECT_EQ(chain.Integer(2), 5);
    ResBuf other = sample();
    other = std::move(chain);
    EXPECT_EQ(other.Count(), 3);
    EXPECT_EQ(other.Real(0), 2.75);
    other.Clear();
    EXPECT_TRUE(other.IsEmpty());
    EXPECT_EQ(other.Head(), nullptr);
}

}  // namespace
