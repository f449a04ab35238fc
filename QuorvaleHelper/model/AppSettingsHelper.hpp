#pragma once

namespace quorvale::model {

class AppSettingsHelper {
public:
    AppSettingsHelper() = default;
    AppSettingsHelper(const AppSettingsHelper&) = delete;
    AppSettingsHelper& operator=(const AppSettingsHelper&) = delete;
};

} // namespace quorvale::model
