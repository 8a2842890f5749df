#ifndef TOLVAR_VARUNDO_CLIENT_FRAMEMEANING_H
#define TOLVAR_VARUNDO_CLIENT_FRAMEMEANING_H

#include <Tolvar/Varundo/Client/Export.h>
#include <Tolvar/Varundo/Client/TextCodec.h>
#include <Tolvar/Varundo/CommandMessage.h>

#include <QString>

/// Frames in words, for logs and tools. Pure functions; usable from any thread.
namespace Tolvar::Varundo::Client {

/// Who sent a frame. Only the read group needs to be told: its requests and answers share their numbers.
enum class Sender : quint8 { Controller, Unit };

/// For example `read meter-counter-1 value`, `write pan position 10 2` or
/// `answer: meter-counter-1 value 12.5`. What a controller sends reads as zelctl's command line for it.
[[nodiscard]] ZEL_CLIENT_EXPORT QString frameMeaning(const CommandMessage& message, Sender sender,
                                                     TextCodec codec);

/// The element that a known frame is about, as it is typed: `status-line-2`. Empty for an unknown command.
[[nodiscard]] ZEL_CLIENT_EXPORT QString frameElement(const CommandMessage& message, Sender sender);

/// Who most likely sent this frame, for a recording that does not tell. An echo of a line number alone cannot
/// be told from a request for it and counts as a request.
[[nodiscard]] ZEL_CLIENT_EXPORT Sender likelySender(const CommandMessage& message);

} // namespace Tolvar::Varundo::Client

#endif
