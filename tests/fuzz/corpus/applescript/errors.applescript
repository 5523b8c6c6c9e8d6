tell application "System Events"
set owner of 3 to missing value
end if
