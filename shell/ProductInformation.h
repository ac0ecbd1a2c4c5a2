#pragma once

#include <QString>
#include <QVariantMap>

#include <optional>

/// What the product-information panel says.
struct ProductInformation {
    QString body; ///< The panel's message: a line for each fact, name and value two tabs apart.
    QString home; ///< The address behind "Home...".
};

/// Made from the bundle's information dictionary. A key that is missing, or whose value is no string, has a built-in
/// default.
[[nodiscard]] ProductInformation productInformation(const std::optional<QVariantMap> &infoDictionary);

/// The support page: the bundle's, else the built-in one.
[[nodiscard]] QString supportPage(const std::optional<QVariantMap> &infoDictionary);
