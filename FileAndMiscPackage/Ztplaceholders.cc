#include "Ztplaceholders.h"

namespace zt::package {

bool TZTPlaceholderAction::Execute() {
  SendMessage(GetClass().GetActionName() + " is not available yet");
  return false;
}

}  // namespace zt::package
