    tell application "System Events"
        tell its application process "ControlCenter"
            tell its menu bar 1
                click its menu bar item "Focus"
            end tell
            tell its window
                set currentValue to value of checkbox "Do Not Disturb"
                set currentState to currentValue as text
                if currentState is not equal to "1" then
                    click checkbox "Do Not Disturb"
                end if
            end tell
        end tell
        key code 53
    end tell

