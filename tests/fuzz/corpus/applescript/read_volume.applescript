    tell application "System Events"
        set storedInputLevel to input volume of (get volume settings)
    end tell