#include "presentation/FocusScript.h"

namespace presentation {

std::string focusScript(std::string_view wantedState) {
  return R"(    tell application "System Events"
        tell its application process "ControlCenter"
            tell its menu bar 1
                click its menu bar item "Focus"
            end tell
            tell its window
                set currentValue to value of checkbox "Do Not Disturb"
                set currentState to currentValue as text
                if currentState is not equal to ")" +
         std::string(wantedState) + R"(" then
                    click checkbox "Do Not Disturb"
                end if
            end tell
        end tell
        key code 53
    end tell

)";
}

}  // namespace presentation
