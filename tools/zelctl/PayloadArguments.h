#ifndef TOLVAR_VARUNDO_ZELCTL_PAYLOADARGUMENTS_H
#define TOLVAR_VARUNDO_ZELCTL_PAYLOADARGUMENTS_H

#include "ElementName.h"

#include <Tolvar/Varundo/Client/CommandCatalog.h>
#include <Tolvar/Varundo/Client/TextCodec.h>

#include <QByteArray>
#include <QString>

namespace Tolvar::Varundo::Zelctl::PayloadArguments {

/// Whether the payload holds text, so that the codec must be known before it can be built.
[[nodiscard]] bool needsCodec(Client::PayloadKind kind);

/// Builds the payload of one command from typed arguments; what is wrong with them is the reader's error.
[[nodiscard]] QByteArray build(ArgumentReader& arguments, const Client::CommandInfo& command,
                               const ElementName& element, Client::TextCodec codec);

/// The arguments in words, for example "COLUMN ROW".
[[nodiscard]] QString usage(Client::PayloadKind kind);

} // namespace Tolvar::Varundo::Zelctl::PayloadArguments

#endif
