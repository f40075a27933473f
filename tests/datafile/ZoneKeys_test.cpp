#include "datafile/ZoneKeys.h"

#include <gtest/gtest.h>

#include <QString>

#include <limits>

#include "platform/RuntimeError.h"
#include "season/season.h"

TEST(ZoneKeys, FMZRLKey_ZoneSeven_Gives701To703) {
    EXPECT_EQ(ZoneKeys::FMZRLKey(7, 1), 701);
    EXPECT_EQ(ZoneKeys::FMZRLKey(7, 2), 702);
    EXPECT_EQ(ZoneKeys::FMZRLKey(7, 3), 703);
}

TEST(ZoneKeys, FMZRLKey_Beyond32Bits_Overflows) {
    EXPECT_EQ(ZoneKeys::FMZRLKey(21474836, 47), std::numeric_limits<std::int32_t>::max());
    EXPECT_THROW(ZoneKeys::FMZRLKey(21474836, 48), platform::RuntimeError);
    EXPECT_THROW(ZoneKeys::FMZRLKey(std::numeric_limits<std::int32_t>::max(), 1),
                 platform::RuntimeError);
    EXPECT_THROW(ZoneKeys::FMZRLKey(std::numeric_limits<std::int32_t>::min(), 1),
                 platform::RuntimeError);
}

// The report and the program count the locations that have keys of their own alike.
static_assert(season::kLocationsWithRoom == ZoneKeys::kStep - 1);

TEST(ZoneKeys, MostLocations_AreWhatTheDigitsCanSay) {
    EXPECT_EQ(QString::number(ZoneKeys::kMostLocations),
              QString(ZoneKeys::kLocationDigits, QLatin1Char('9')));
}
