#include "WeatherReplies.h"
#include "OutsideData.h"
#include "WeatherFixtures.h"

#include <gtest/gtest.h>

namespace {

template <typename T> bool decodes(const WeatherResult<T>& r)
{
    return std::holds_alternative<T>(r);
}

template <typename T> bool failsDecoding(const WeatherResult<T>& r)
{
    const auto* err = std::get_if<WeatherError>(&r);
    return err && err->kind == WeatherError::Kind::Decoding;
}

struct Case {
    const char* what;
    QByteArray body;
    bool ok;
};

} // namespace

TEST(WeatherReplies, IPLocationFromTheServiceShape)
{
    const auto r = IPLocation::decode(samples::ipMilan);
    ASSERT_TRUE(decodes(r));
    EXPECT_EQ(std::get<IPLocation>(r), (IPLocation{45.4643, 9.1895, "Milan", "Italy"}));
}

TEST(WeatherReplies, IPLocationRequiresEveryField)
{
    const Case cases[] = {
        {"whole numbers for coordinates", R"({"lat":45,"lon":9,"city":"Milan","country":"Italy","isp":"x"})", true},
        {"no country", R"({"lat":45.1,"lon":9.2,"city":"Milan"})", false},
        {"null city", R"({"lat":45.1,"lon":9.2,"city":null,"country":"Italy"})", false},
        {"coordinate as text", R"({"lat":"45.1","lon":9.2,"city":"Milan","country":"Italy"})", false},
        {"failure reply", samples::ipFail, false},
        {"empty object", "{}", false},
        {"array", "[]", false},
        {"not JSON", "<html>rate limited</html>", false},
        {"empty body", "", false},
    };
    for (const auto& c : cases) {
        const auto r = IPLocation::decode(c.body);
        EXPECT_EQ(decodes(r), c.ok) << c.what;
        EXPECT_EQ(failsDecoding(r), !c.ok) << c.what;
    }
}

TEST(WeatherReplies, GeocodingResultsAndTheirAbsence)
{
    struct GeoCase {
        const char* what;
        QByteArray body;
        bool ok;
        int results; // -1: absent
    };
    const GeoCase cases[] = {
        {"one match", samples::geoMilano, true, 1},
        {"no results field", samples::geoNone, true, -1},
        {"null results", R"({"results":null})", true, -1},
        {"empty results", samples::geoEmpty, true, 0},
        {"two matches", R"({"results":[{"name":"Roma","latitude":41.89,"longitude":12.51,"country":"Italia"},
                          {"name":"Roma","latitude":-26.5,"longitude":148.8,"country":"Australia"}]})",
         true, 2},
        {"match without country", samples::geoNoCountry, false, 0},
        {"second match without country", R"({"results":[{"name":"Roma","latitude":41.89,"longitude":12.51,
                          "country":"Italia"},{"name":"X","latitude":1,"longitude":2}]})",
         false, 0},
        {"results not an array", R"({"results":{"name":"Roma"}})", false, 0},
        {"element not an object", R"({"results":["Roma"]})", false, 0},
        {"error body", samples::openMeteoError, true, -1},
        {"not JSON", "Bad Gateway", false, 0},
    };
    for (const auto& c : cases) {
        const auto r = GeocodingResponse::decode(c.body);
        ASSERT_EQ(decodes(r), c.ok) << c.what;
        if (!c.ok)
            continue;
        const auto& results = std::get<GeocodingResponse>(r).results;
        EXPECT_EQ(results ? int(results->size()) : -1, c.results) << c.what;
    }
    const auto milano = std::get<GeocodingResponse>(GeocodingResponse::decode(samples::geoMilano));
    EXPECT_EQ(milano.results->first(), (GeocodingResponse::Result{"Milano", 45.46427, 9.18951, "Italia"}));
}

TEST(WeatherReplies, NamesFromEitherServiceAreCutToWhatAScreenShows)
{
    const QByteArray name(100000, 'x');
    const QString cut(outside::maxTextLength, 'x');
    const auto ip = IPLocation::decode(R"({"lat":1,"lon":2,"city":")" + name + R"(","country":")" + name + "\"}");
    ASSERT_TRUE(decodes(ip)) << std::get<WeatherError>(ip).detail.toStdString();
    EXPECT_EQ(std::get<IPLocation>(ip), (IPLocation{1, 2, cut, cut}));
    const auto geo = GeocodingResponse::decode(R"({"results":[{"name":")" + name +
                                               R"(","latitude":1,"longitude":2,"country":")" + name + "\"}]}");
    ASSERT_TRUE(decodes(geo)) << std::get<WeatherError>(geo).detail.toStdString();
    EXPECT_EQ(std::get<GeocodingResponse>(geo).results->first(), (GeocodingResponse::Result{cut, 1, 2, cut}));
}

TEST(WeatherReplies, ForecastFromTheServiceShape)
{
    const auto r = WeatherResponse::decode(samples::forecastMilan);
    ASSERT_TRUE(decodes(r));
    const auto& w = std::get<WeatherResponse>(r);
    EXPECT_EQ(w.current, (WeatherResponse::CurrentWeather{21.5, 2, 55.0, 20.8, 7.9}));
    ASSERT_TRUE(w.daily);
    EXPECT_EQ(w.daily->time.size(), 5);
    EXPECT_EQ(w.daily->time[4], "2024-06-07");
    EXPECT_EQ(w.daily->weathercode, (QList<qint64>{2, 61, 3, 0, 95}));
    EXPECT_EQ(w.daily->temperature_2m_max, (QList<double>{24.4, 19.8, 22, 26.5, 27.9}));
    EXPECT_EQ(w.daily->temperature_2m_min, (QList<double>{15.2, 14.1, 13.6, -0.4, 17.4}));
}

TEST(WeatherReplies, ForecastOptionalsAndDailyMayBeAbsent)
{
    const auto r = WeatherResponse::decode(samples::forecastNoDaily);
    ASSERT_TRUE(decodes(r));
    const auto& w = std::get<WeatherResponse>(r);
    EXPECT_FALSE(w.daily);
    EXPECT_EQ(w.current, (WeatherResponse::CurrentWeather{-3.5, 0, std::nullopt, -7.0, std::nullopt}));
}

TEST(WeatherReplies, ForecastStrictness)
{
    const QByteArray daily = R"("daily":{"time":["2024-06-03","2024-06-04"],"weathercode":[1,2],
        "temperature_2m_max":[20,21],"temperature_2m_min":[10,11]})";
    const Case cases[] = {
        {"minimal current", R"({"current":{"temperature_2m":20,"weathercode":1}})", true},
        {"null daily", R"({"current":{"temperature_2m":20,"weathercode":1},"daily":null})", true},
        {"short daily", R"({"current":{"temperature_2m":20,"weathercode":1},)" + daily + "}", true},
        {"arrays of unequal length",
         R"({"current":{"temperature_2m":20,"weathercode":1},"daily":{"time":["a"],
            "weathercode":[],"temperature_2m_max":[1,2,3],"temperature_2m_min":[1]}})",
         true},
        {"code written 3.0", R"({"current":{"temperature_2m":20,"weathercode":3.0}})", true},
        {"no current", "{" + daily + "}", false},
        {"null current", R"({"current":null})", false},
        {"current not an object", R"({"current":[20,1]})", false},
        {"no temperature", R"({"current":{"weathercode":1}})", false},
        {"fractional code", R"({"current":{"temperature_2m":20,"weathercode":2.5}})", false},
        {"code as text", R"({"current":{"temperature_2m":20,"weathercode":"2"}})", false},
        {"optional of the wrong type", R"({"current":{"temperature_2m":20,"weathercode":1,"windspeed_10m":"7"}})",
         false},
        {"daily not an object", R"({"current":{"temperature_2m":20,"weathercode":1},"daily":[]})", false},
        {"daily without min", R"({"current":{"temperature_2m":20,"weathercode":1},"daily":{"time":[],
            "weathercode":[],"temperature_2m_max":[]}})",
         false},
        {"null inside an array", R"({"current":{"temperature_2m":20,"weathercode":1},"daily":{"time":["a"],
            "weathercode":[1],"temperature_2m_max":[null],"temperature_2m_min":[1]}})",
         false},
        {"error body", samples::openMeteoError, false},
        {"truncated", samples::forecastMilan.left(200), false},
    };
    for (const auto& c : cases) {
        const auto r = WeatherResponse::decode(c.body);
        EXPECT_EQ(decodes(r), c.ok) << c.what;
        EXPECT_EQ(failsDecoding(r), !c.ok) << c.what;
    }
}
