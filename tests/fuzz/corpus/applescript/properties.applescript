tell application "System Events" to tell window (1)
set its size of checkbox 2 to 3
set value of it to name as boolean
click
end
