tell application "System Events"
set owner to 3
end if
