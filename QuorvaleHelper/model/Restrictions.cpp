#include "model/Restrictions.hpp"

namespace quorvale::model {

using platform::json::DecodingError;

std::expected<Restrictions, DecodingError> Restrictions::decode(const platform::json::Decoder& decoder) {
    return decoder.record<Restrictions, bool, bool, bool, bool>();
}

void Restrictions::encode(platform::json::Encoder& encoder) const {
    auto object = encoder.container<CodingKeys>();
    object.encode(training, CodingKeys::training);
    object.encode(geographyLock, CodingKeys::geographyLock);
    object.encode(allowLock, CodingKeys::allowLock);
    object.encode(denyLock, CodingKeys::denyLock);
}

} // namespace quorvale::model
