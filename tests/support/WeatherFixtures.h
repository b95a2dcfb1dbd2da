#pragma once
// Replies shaped as the public services send them, and the switch that points the client at a test.
#include "SettingsManager.h"
#include "WeatherMonitor.h"

// An empty base sends each service back to its public host.
inline void pointWeatherServicesAt(const QString& base)
{
    for (auto s :
         {WeatherMonitor::Service::IpApi, WeatherMonitor::Service::Geocoding, WeatherMonitor::Service::Forecast})
        SettingsManager::shared().saveSetting(base, WeatherMonitor::configKey(s));
}

namespace samples {

inline const QByteArray ipMilan = R"({"country":"Italy","city":"Milan","lat":45.4643,"lon":9.1895})";

inline const QByteArray geoMilano =
    R"({"results":[{"id":3173435,"name":"Milano","latitude":45.46427,"longitude":9.18951,
"country_code":"IT","country":"Italia","postcodes":["20121"]}],"generationtime_ms":0.7})";
inline const QByteArray geoNone = R"({"generationtime_ms":0.48196316})";
inline const QByteArray geoEmpty = R"({"results":[],"generationtime_ms":0.3})";

inline const QByteArray openMeteoError = R"({"error":true,"reason":"Latitude must be in range of -90 to 90°."})";

inline const QByteArray forecastMilan = R"({"latitude":45.46,"longitude":9.18,"current_units":{"temperature_2m":"°C"},
"current":{"time":"2024-06-03T14:15","temperature_2m":21.5,"weathercode":2,"windspeed_10m":7.9,"apparent_temperature":20.8},
"daily":{"time":["2024-06-03","2024-06-04","2024-06-05","2024-06-06","2024-06-07"],"weathercode":[2,61,3,0,95],
"temperature_2m_max":[24.4,19.8,22,26.5,27.9],"temperature_2m_min":[15.2,14.1,13.6,-0.4,17.4]}})";

// No daily block, optional fields null.
inline const QByteArray forecastNoDaily = R"({"latitude":46.5,"longitude":11.35,"current":{"temperature_2m":-3.5,
"weathercode":0,"windspeed_10m":null,"relativehumidity_2m":null,"apparent_temperature":-7}})";

} // namespace samples
