// SPDX-License-Identifier: GPL-3.0-or-later
// Pages against tables that others keep: the codecs of Python, and here and there a row from the definition.
#include "tests/text/TestText.h"
#include "text/CodePage.h"
#include "text/MarkupDocument.h"
#include "text/TextConverter.h"

#include <array>
#include <cstdio>
#include <map>
#include <memory>
#include <vector>

namespace {

struct Close {
    void operator()(std::FILE* file) const { pclose(file); }
};

/// Every character of a codec's table, in one or two bytes.
std::map<QByteArray, QString> tableOf(const char* codec, bool pairs) {
    const std::string program =
        std::string("/usr/bin/python3 -c \"\n") + "c = '" + codec + "'\n" +
        "for a in range(256):\n"
        "    for s in [bytes([a])] + [bytes([a, b]) for b in range(48, 256) if a > 128 and " +
        (pairs ? "True" : "False") +
        "]:\n"
        "        try: t = s.decode(c)\n"
        "        except UnicodeDecodeError: continue\n"
        "        if len(t) == 1: print(s.hex(), t.encode('utf-16-be').hex())\n"
        "\"";
    const std::unique_ptr<std::FILE, Close> out(popen(program.c_str(), "re"));
    std::map<QByteArray, QString> table;
    std::array<char, 16> bytes{};
    unsigned character = 0;
    while (out && std::fscanf(out.get(), "%15s %x", bytes.data(), &character) == 2) {
        table.emplace(QByteArray::fromHex(bytes.data()), QChar(static_cast<char16_t>(character)));
    }
    return table;
}

TEST(CodePageTable, PagesAreThoseOfOtherTablesBothWays) {
    struct Row {
        int Page;
        const char* Codec;
        bool Pairs = false;
    };
    const std::vector<Row> rows = {
        {154, "ptcp154"},        {437, "cp437"},        {720, "cp720"},         {737, "cp737"},
        {775, "cp775"},          {850, "cp850"},        {852, "cp852"},         {855, "cp855"},
        {857, "cp857"},          {858, "cp858"},        {860, "cp860"},         {861, "cp861"},
        {862, "cp862"},          {863, "cp863"},        {864, "cp864"},         {865, "cp865"},
        {866, "cp866"},          {869, "cp869"},        {874, "cp874"},         {1125, "cp1125"},
        {1250, "cp1250"},        {1251, "cp1251"},      {1252, "cp1252"},       {1253, "cp1253"},
        {1254, "cp1254"},        {1255, "cp1255"},      {1256, "cp1256"},       {1257, "cp1257"},
        {1258, "cp1258"},        {10000, "mac_roman"},  {10004, "mac_arabic"},  {10006, "mac_greek"},
        {10010, "mac_romanian"}, {10029, "mac_latin2"}, {10079, "mac_iceland"}, {10081, "mac_turkish"},
        {10082, "mac_croatian"}, {20866, "koi8_r"},     {21866, "koi8_u"},      {28592, "iso8859_2"},
        {28597, "iso8859_7"},    {28605, "iso8859_15"}, {932, "cp932", true},   {936, "gbk", true},
        {949, "cp949", true},    {1361, "johab", true},
    };
    for (const auto& [page, codec, pairs] : rows) {
        const std::map<QByteArray, QString> table = tableOf(codec, pairs);
        ASSERT_GT(table.size(), 190U) << codec;
        std::map<QString, int> places;
        for (const auto& [bytes, text] : table) {
            ++places[text];
        }
        for (const auto& [bytes, text] : table) {
            ASSERT_EQ(DecodeText(bytes, page), text) << page << " " << bytes.toHex().constData();
            bool lossy = false;
            const QByteArray back = EncodeText(text, page, '?', &lossy);
            ASSERT_FALSE(lossy) << page << " " << bytes.toHex().constData();
            // Of several places makers prefer different ones.
            if (places[text] == 1) {
                ASSERT_EQ(back, bytes) << page;
            } else {
                ASSERT_EQ(table.at(back), text) << page << " " << back.toHex().constData();
            }
        }
    }
}

TEST(CodePageTable, PagesOfNoOtherTable) {
    struct Row {
        int Page;
        QByteArray Bytes;
        const char* Text;
    };
    const std::vector<Row> rows = {
        {853, "\x86\x8F\x95\xA7\xA9\xD5\xE7\xFD", "ĉĈòğĥıĦ²"},
        {853, "\x1A\x1C\x7F", "\x1A\x1C\x7F"},
        {10005, "\xE0\xFA\xA6 \xC1\xC7\xD7", "את₪ „\uFB4B\uFB2B"},
        {20107, "$@[\\]^`{|}~", "¤ÉÄÖÅÜéäöåü"},
        {20106, "@[\\]{|}~", "§ÄÖÜäöüß"},
        {10001, "\x90\x7D\x1A\x1C\x7F\xFE", "図\x1A\x1C\x7F™"},
        {50221, "\x1B$B?^LL\x1B(I1\x1B(Ba", "図面ｱa"},
        {50222,
         "\x1B$B?^\x1B(B\x0E"
         "1\x0F"
         "a",
         "図ｱa"},
        {50220, "\x1B$B-!\x1B(Ba", "①a"},
    };
    for (const auto& [page, bytes, text] : rows) {
        EXPECT_EQ(Plain(DecodeText(bytes, page)), text) << page;
        EXPECT_EQ(EncodeText(QString::fromUtf8(text), page).toHex(), bytes.toHex()) << page;
    }
    EXPECT_EQ(EncodeText(QString::fromUtf8("ｶﾞ"), 50220), "\x1B$B%,\x1B(B") << "the sign joins its letter";
    bool lossy = false;
    EXPECT_EQ(EncodeText(QString::fromUtf8("a😀b"), 437, '?', &lossy), "a?b");
    EXPECT_TRUE(lossy);
}

TEST(CodePageTable, PagesThatNobodyHasSaySo) {
    for (const int page : {20001, 20003, 20004, 20005, 29001}) {
        EXPECT_FALSE(HasCodePage(page)) << page;
        EXPECT_EQ(Plain(DecodeText("a\xC3\xA9", page)), "a\uFFFD\uFFFD")
            << "not what the locale would make of it";
    }
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("f.xml"));
    WriteBytes(path, "<?xml encoding='x-europa'?><a>\xE4</a>");
    MarkupDocument document;
    EXPECT_FALSE(document.LoadFile(path));
    EXPECT_TRUE(document.Result().contains(u"<encoding_unavailable encoding=\"x-europa\"/>"));
    document.SetDocumentText(QString::fromUtf8("<?xml encoding='x-cp20001'?><a>ä</a>"));
    EXPECT_FALSE(document.SaveFile(path));
    EXPECT_EQ(ReadBytes(path), "<?xml encoding='x-europa'?><a>\xE4</a>") << "the old file stays";
    TextConverter converter{QStringLiteral("UTF-8"), QStringLiteral("x-cp20003"), "abc", 3, 16};
    EXPECT_EQ(Convert(converter, nullptr), 0);
    EXPECT_TRUE(converter.Unavailable);
}

TEST(CodePageTable, DocumentsInEncodingsWithShiftsSurviveSaving) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("f.xml"));
    const std::vector<std::pair<const char*, const char*>> cases = {
        {"iso-2022-kr", "~ 가나 ~{"}, {"hz-gb-2312", "~ 中文 ~{ ~}"}, {"windows-50221", "図面 ① ｱ ~"}};
    for (const auto& [encoding, content] : cases) {
        const QString text = QStringLiteral("<?xml version=\"1.0\" encoding=\"%1\"?><a>%2</a>")
                                 .arg(QString::fromLatin1(encoding), QString::fromUtf8(content));
        MarkupDocument document;
        document.SetDocumentText(text);
        ASSERT_TRUE(document.SaveFile(path));
        MarkupDocument read;
        ASSERT_TRUE(read.LoadFile(path));
        EXPECT_EQ(Plain(read.GetDocumentText()), Plain(text));
    }
}

TEST(CodePageTable, AGenuineReplacementCharacterIsNoDamage) {
    const QByteArray bytes =
        "a\xEF\xBF\xBD"
        "b\xFF";
    std::array<char32_t, 8> wide{};
    TextConverter converter{QStringLiteral("UTF-32"), QStringLiteral("UTF-8"), bytes.constData(),
                            bytes.size(), 8};
    ASSERT_EQ(Convert(converter, wide.data()), 4);
    EXPECT_EQ(std::u32string(wide.data(), 4), U"a\uFFFDb?");
}

}  // namespace
