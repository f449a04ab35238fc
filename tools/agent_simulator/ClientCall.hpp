#pragma once

#include <QString>
#include <QStringList>
#include <QVariantList>

#include <expected>

namespace quorvale::agent_simulator {

/// One call of the interface com.quorvale.ClientCommunication, as a command line words it.
struct ClientCall {
    QString method;
    QVariantList arguments;
    /// The bus name to send it to; the client that registered last, if empty.
    QString target;

    static constexpr auto help =
        "  promptUserWithAboutFlow a{sv} s s s s d    updateEventLogDefaults s\n"
        "  updateProtectionStatus b                   updateGeoDataDefaults s\n"
        "  updateRulesStatus b                        sendDefaultsToClientWith a{sv}\n"
        "Arguments not given have a default. An argument TYPE:VALUE has that type instead of the right one\n"
        "(s b i u x d as v a{sv}; a{sv} and as take JSON), and further arguments may follow the right ones.\n"
        "A word \"-\" ends the arguments without defaults. A word @NAME sends the call to that bus name instead of\n"
        "the client that registered last. A word with blanks is put between ' '.\n";

    static bool isMethod(const QString& name);

    /// The call of `method` that `words` describe, or what is wrong with them.
    static std::expected<ClientCall, QString> parse(const QString& method, const QStringList& words);
};

} // namespace quorvale::agent_simulator
