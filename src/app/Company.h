#pragma once

#include <QString>

namespace quillon::app {

// The maker's names, used in reports, the settings domain and support lines.
inline constexpr const char* kCompanyName = "Tornvale";
inline constexpr const char* kApplicationName = "Quillon";
inline constexpr const char* kCompanyWebAddress = "https://www.tornvale.com";
inline constexpr const char* kSupportAddress = "support@tornvale.com";

// "\n\nWith any questions, contact " and the support address, appended to user-facing errors
// that invite questions.
QString supportContactLine();

// The message with the support-contact line appended.
QString withSupportContact(const QString& message);

} // namespace quillon::app
