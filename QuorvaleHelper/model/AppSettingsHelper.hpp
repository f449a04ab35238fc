#pragma once

namespace quorvale::model {

class AppSettingsHelper {};

} // namespace quorvale::model
