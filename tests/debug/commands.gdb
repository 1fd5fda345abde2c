set width 0
set debuginfod enabled off
break stopHere
run
up
print text
print utf
print collectable
print part
print path
print settings
print *settings.mFirst->mNext
print ordered
print set
print dictionary
print list
print memory
print stop
print error
print failure
