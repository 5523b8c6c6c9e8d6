tell application "System Events"
  set p to application process "ControlCenter"
  set boxName to "Do Not Disturb"
  if value of checkbox boxName of window 1 of p as integer = 1 then click checkbox boxName of window 1 of p
end tell
