#ifndef TOLVAR_VARUNDO_ZELCTL_ELEMENTCOMMANDS_H
#define TOLVAR_VARUNDO_ZELCTL_ELEMENTCOMMANDS_H

#include "CommandTable.h"
#include "ElementName.h"

/// The commands that name an element.
namespace Tolvar::Varundo::Zelctl {

[[nodiscard]] ExitStatus readElement(Zelctl& zelctl, const CommandCall& call);
[[nodiscard]] ExitStatus writeElement(Zelctl& zelctl, const CommandCall& call);
[[nodiscard]] ExitStatus switchElements(Zelctl& zelctl, const CommandCall& call);

/// The rest of any write command: builds the payload from what is left of the arguments, and sends it.
[[nodiscard]] ExitStatus writePayload(Zelctl& zelctl, const CommandCall& call, ArgumentReader& arguments,
                                      const Client::CommandInfo& command, const ElementName& element);

/// For commands that are called as the element they act on.
[[nodiscard]] ExitStatus runAction(Zelctl& zelctl, const CommandCall& call);

/// What is read of an element when the user does not say.
[[nodiscard]] const Client::CommandInfo* defaultReading(const ElementName& element);

} // namespace Tolvar::Varundo::Zelctl

#endif
