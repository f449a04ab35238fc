#include "model/AllowedClass.hpp"

#include <utility>

namespace quorvale::model {

AllowedClass::AllowedClass(std::string address, std::string name, std::string land, double seconds, double julianDate,
                           std::int64_t remotePort, std::int32_t sent, std::int16_t count)
    : ipAddress(std::move(address)),
      dnsName(std::move(name)),
      country(std::move(land)),
      timeStamp(seconds),
      julian(julianDate),
      port(remotePort),
      bytesOut(sent),
      requests(count) {}

} // namespace quorvale::model
