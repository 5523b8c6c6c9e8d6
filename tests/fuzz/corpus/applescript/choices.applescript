set a to "x\n\"" -- one
if a is "x" then
set b to 1
else if a /= missing value then # two
set b to -2.5E+3
else
set b to true
end if
(* three (* four *) *)
b as text
