#include "app/console/console.h"
#include "app/console/cpu_usage.h"
#include "app/console/number_forms.h"
#include "app/console/text_width.h"
#include "app/console/value_parsers.h"
#include "support/program.h"

#include <limits>
#include <sstream>
#include <string>

namespace {

using namespace zvp;
using test::printed_by;

/// `rows`: "<text>=<result>;..." of a function from text.
template <class Function>
void expect_rows(Function function, const std::string& rows) {
    std::istringstream stream(rows);
    for (std::string row; std::getline(stream, row, ';');) {
        const std::size_t equals = row.find('=');
        EXPECT_EQ(function(row.substr(0, equals)), row.substr(equals + 1)) << row;
    }
}

/// The same for a parser of numbers.
template <class Value>
void expect_values(Value (*parse)(std::string_view), const std::string& rows) {
    expect_rows([&](const std::string& text) { return std::to_string(parse(text)); }, rows);
}

TEST(NumberForms, ByteUnitsChangeAtTheirRoundingBounds) {
    expect_rows([](const std::string& text) { return format_bytes(std::stoull(text)); },
                "0=  0 bytes;42= 42 bytes;999=999 bytes;1000=0.98 KiB;1018=0.99 KiB;1019=1.00 KiB;1024=1.00 KiB;"
                "10234=9.99 KiB;10235=10.0 KiB;102348=99.9 KiB;102349= 100 KiB;1023487= 999 KiB;1023488=0.98 MiB;"
                "1023999=0.98 MiB;1024000=0.98 MiB;1234567=1.18 MiB;1048051711= 999 MiB;1048051712=0.98 GiB;"
                "1073322393=1.00 GiB;1099511627776=1.00 TiB;18446744073709551615=16.0 EiB");
}

TEST(NumberForms, CommasAndSignsStandAtTheEndsOfTheRange) {
    EXPECT_EQ(format_number(999, NumberForm::commas), "999");
    EXPECT_EQ(format_number(1000, NumberForm::commas), "1,000");
    EXPECT_EQ(format_number(1'234'567, NumberForm::commas_and_bytes), "1,234,567 (1.18 MiB)");
    EXPECT_EQ(format_signed(-100'000, NumberForm::commas), "-100,000");
    EXPECT_EQ(format_signed(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(format_fixed(1e300, 0).size(), 301u);
}

TEST(NumberForms, TimesChangeUnitAtTwoHoursAndTwoDays) {
    expect_rows([](const std::string& text) { return format_seconds(std::stod(text)); },
                "0=0.000 seconds  ( 0.000 minutes );7199=7199.000 seconds  ( 119.983 minutes );"
                "7200=7200.000 seconds  ( 2.000 hours );172799=172799.000 seconds  ( 48.000 hours );"
                "172800=172800.000 seconds  ( 2.000 days )");
}

TEST(ValueParsers, TakeTheLeadingNumberAndSaturate) {
    expect_values(parse_uL, "=0;x1=0;007a9=7;1,000=1;18446744073709551615=18446744073709551615;"
                            "18446744073709551616=18446744073709551615");
    expect_values(parse_sL, "-=0;-5x=-5;9223372036854775808=9223372036854775807;"
                            "-9223372036854775808=-9223372036854775808;-99999999999999999999=-9223372036854775808");
    expect_values(parse_u32, "4294967295=4294967295;4294967296=4294967295");
    expect_values(parse_s32, "-2147483649=-2147483648;2147483648=2147483647;-3=-3");
    expect_values(parse_commas, "1,234,567=1234567;,12,x3=12;,=0");
}

TEST(ValueParsers, DigitSuffixesDifferBetweenOptionAndMenu) {
    expect_values(parse_digits, "1k=1000;1K=1000;25M=25000000;10b=10000000000;2T=2000000000000;5x=5;k=0;"
                                "30000000t=18446744073709551615");
    expect_values(parse_menu_digits, "1K=1024;25m=25000000;25M=26214400;1b=1000000000;1G=1073741824;"
                                     "1t=1000000000000;1T=1099511627776;9P=9;12=12");
}

TEST(ValueParsers, ByteCountsRoundTheFractionOfAUnitUp) {
    expect_values(parse_bytes, "2.5GB=2684354560;768MB=805306368;768M=805306368;10  k=10240;0.1K=103;1.9=1;1.9 B=1;"
                               ".5k=512;=0;15e=17293822569102704640;16E=18446744073709551615;"
                               "15.9999999999999999999E=18446744073709551615");
}

TEST(TypedNumber, ATailIsUnreadAndGroupedDigitsAreRead) {
    const struct {
        NumberKind kind;
        const char* rows;
    } cases[] = {
        {NumberKind::integer,
         "=|;12=12|;1,234=1234|; 5 =5|;12,34=12|,34;1234,567=1234|,567;1,000,00=1000|,00;x=|x;-1=|-1"},
        {NumberKind::signed_integer, "-1,000=-1000|;--1=-|--1;-=-|-"},
        {NumberKind::digits, "25M=25M|;1,500k=1500k|;1e3=1|e3;1.5k=1|.5k;5kk=5k|k;k=k|k"},
        {NumberKind::menu_digits, "1G=1G|;1g=1|g"},
        {NumberKind::bytes, "2.5 GiB=2.5 Gi|;768MBytes=768M|;.5G=.5G|;999 bytes=999 |;1.2.3=1.2|.3;5X=5|X;B=|B"},
    };
    for (const auto& c : cases)
        expect_rows(
            [&](const std::string& text) {
                const TypedNumber number(text, c.kind);
                return number.text + "|" + number.unread;
            },
            c.rows);
}

TEST(TextWidth, ColumnsAreCodePointsNotBytes) {
    EXPECT_EQ(column_count("π ≈ 3"), 5u);
    EXPECT_EQ(fit_left("πρσ", 2) + "|" + fit_left("πρ", 4) + "|", "πρ|πρ  |");
    EXPECT_EQ(pad_left("πρ", 4) + "|" + pad_left("long", 2), "  πρ|long");
}

TEST(TextWidth, LabelKeepsABlankBeforeItsValue) {
    expect_rows([](const std::string& label) { return printed_by([&] { print_labelm(6, label, "x", 'G'); }); },
                "abc=abc   x;abcde=abcde x;abcdef=abcde x;αβγδεζη=αβγδε x;=      x");
    EXPECT_EQ(printed_by([] { print_labelm(0, "a", "x"); }), "x");
}

TEST(CpuUsage, DividesByTheCoresAndSurvivesAZeroTime) {
    EXPECT_EQ(printed_by([] { print_cpu_usage(2, 3, 0.5, 4); }),
              "CPU Utilization:        150.00 %  +  25.00 % kernel overhead\n"
              "Multi-core Efficiency:  37.50 %  +  6.25 % kernel overhead\n");
    EXPECT_EQ(printed_by([] { print_cpu_usage(0, 3, 0, 4); }),
              "CPU Utilization:        Too Fast to Measure\nMulti-core Efficiency:  Too Fast to Measure\n");
}

} // namespace
