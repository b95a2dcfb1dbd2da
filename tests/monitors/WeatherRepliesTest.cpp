#include "WeatherReplies.h"
#include "OutsideData.h"

#include <gtest/gtest.h>

TEST(WeatherReplies, RequiredFieldsWithTheirTypesAndNamesCutShort)
{
    const auto expectDecodes = [](auto decode, bool ok, std::initializer_list<QByteArray> bodies) {
        for (const auto& body : bodies)
            EXPECT_EQ(decode(body).index() == 0, ok) << body.toStdString();
    };
    const QByteArray now = R"({"current":{"temperature_2m":20,"weathercode":1})";
    const QByteArray roma = R"({"name":"Roma","latitude":41.89,"longitude":12.51,"country":"Italia"})";
    const QByteArray days = R"(,"daily":{"time":["a"],"weathercode":[1],"temperature_2m_max":[2])";
    expectDecodes(IPLocation::decode, true, {R"({"lat":45,"lon":9,"city":"Milan","country":"Italy","isp":"x"})"});
    expectDecodes(IPLocation::decode, false,
                  {R"({"lat":45.1,"lon":9.2,"city":"Milan"})", "",
                   R"({"lat":45.1,"lon":9.2,"city":null,"country":"Italy"})",
                   R"({"lat":"45.1","lon":9.2,"city":"Milan","country":"Italy"})"});
    expectDecodes(GeocodingResponse::decode, true, {R"({"results":null})", R"({"results":[)" + roma + "]}"});
    expectDecodes(GeocodingResponse::decode, false,
                  {R"({"results":[)" + roma + R"(,{"name":"X","latitude":1,"longitude":2}]})",
                   R"({"results":)" + roma + "}", R"({"results":["Roma"]})"});
    expectDecodes(WeatherResponse::decode, true,
                  {now + R"(,"daily":null})", now + days + R"(,"temperature_2m_min":[]}})",
                   R"({"current":{"temperature_2m":20,"weathercode":3.0}})"});
    expectDecodes(WeatherResponse::decode, false,
                  {R"({"daily":{}})", R"({"current":null})", R"({"current":[20,1]})",
                   R"({"current":{"weathercode":1}})", R"({"current":{"temperature_2m":20,"weathercode":2.5}})",
                   R"({"current":{"temperature_2m":20,"weathercode":1,"windspeed_10m":"7"}})", now + R"(,"daily":[]})",
                   now + days + "}}", now + days + R"(,"temperature_2m_min":[null]}})", now + days});

    // Names from either service are cut to what a screen shows.
    const QByteArray name(100000, 'x'), names = name + R"(","country":")" + name + "\"";
    const auto ip = std::get<IPLocation>(IPLocation::decode(R"({"lat":1,"lon":2,"city":")" + names + "}"));
    const auto geo = std::get<GeocodingResponse>(
        GeocodingResponse::decode(R"({"results":[{"latitude":1,"longitude":2,"name":")" + names + "}]}"));
    EXPECT_EQ(QStringList({ip.city, ip.country, geo.results->first().name, geo.results->first().country}),
              QStringList(4, QString(256, 'x')));
}
