# Runs the tools with the arguments, files and limits that users have. BIN, SUFFIX: where they are; EMULATOR: what
# runs them; DATA: the golden files; WORK: a folder for this; SANITIZE: not empty when they may not be limited.
cmake_minimum_required(VERSION 3.20)
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
set(odd "Ж文é") # no code page of Windows has all of these

# expect(STATUS OUTPUT TOOL ARGS...): the exit code, and a regular expression for what is printed, errors too.
function(expect status output tool)
    execute_process(COMMAND ${EMULATOR} ${BIN}/${tool}${SUFFIX} ${ARGN} WORKING_DIRECTORY ${WORK}
                    RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err TIMEOUT 60)
    string(REPLACE "\r" "" all "${out}${err}")
    string(REGEX REPLACE "wine: [^\n]*\n" "" all "${all}") # told of Wine's own processes
    if(NOT result STREQUAL "${status}" OR NOT all MATCHES "${output}")
        list(JOIN ARGN " " line)
        message(SEND_ERROR "${tool} ${line}\nwanted ${status}: ${output}\nfound ${result}: ${all}")
    endif()
endfunction()

function(expect_file name text)
    file(READ ${WORK}/${name} found)
    if(NOT found STREQUAL "${text}")
        message(SEND_ERROR "${name}\nwanted: ${text}\nfound: ${found}")
    endif()
endfunction()

# Looking.
expect(0 "^0\n255\n$" zavconf get ${DATA}/values.bin uchars)
expect(0 "^2\n$" zavconf --separator=/ get ${DATA}/values.bin a:b)
expect(1 "values.zav: no such value" zavconf get ${DATA}/values.zav a c)
expect(2 "^usage: zavconf" zavconf set values.zav)
expect(1 "^${DATA}/broken.zav:4:3: .*Error in object hierarchy .found .x..\n$" zavconf check ${DATA}/values.bin
       ${DATA}/values.zav ${DATA}/broken.zav)
file(WRITE ${WORK}/hasty.txt "<< /a 5, /a 3 /:x 4 >>")
expect(0 "^$" zavconf check hasty.txt)
expect(1 "^hasty.txt:1:7: [^\n]*\nhasty.txt:1:10: [^\n]*\nhasty.txt:1:15: [^\n]*\n$" zavconf check --strict hasty.txt)

# Setting changes one entry and no other byte.
set(before "% mine\n<<\n/tiny 0.00000123 % keep\n/x << /y 1 /z(2)/u 3>>\n/x:y (two)\n")
file(WRITE ${WORK}/${odd}.txt "${before}>>\n% end")
expect(0 "^$" zavconf set ${odd}.txt v ${odd})
expect(0 "^${odd}\n$" zavconf get ${odd}.txt v)
expect(0 "^$" zavconf set ${odd}.txt x:z 10:30)
expect(0 "^$" zavconf set ${odd}.txt x:y -5)
expect(0 "^$" zavconf set ${odd}.txt x:new:er 0.1234567)
expect(1 "leads through" zavconf set ${odd}.txt v:below 1)
expect(2 "empty key" zavconf set ${odd}.txt a::b 1)
expect(2 "does not fit" zavconf set ${odd}.txt v 99999999999)
expect_file(${odd}.txt "% mine\n<<\n/tiny 0.00000123 % keep\n/x << /y 1 /z (10:30) /u 3 /new:er 0.1234567 >>\n/x:y -5\n/v (\\320\\226\\346\\226\\207\\303\\251)\n>>\n% end")
# A comment behind the value must not hide what follows.
expect(0 "^$" zavconf set ${odd}.txt x:u "[ 7 ] % one")
expect(0 "^7\n$" zavconf get ${odd}.txt x:u)
# A dictionary that several entries make is replaced by one behind them.
expect(0 "^$" zavconf set ${odd}.txt x "<< /only 1 >>")
expect(0 "^    .- only => .Long.1\n$" zavconf get ${odd}.txt x)

# What a form cannot hold is named, and has a status of its own.
file(WRITE ${WORK}/in.json "{\"http://x\":1,\"\":2,\"deep\":{\"r\":[0.5,1.23e-6]},\"e\":[]}")
expect(3 "in.json: lost: e: an empty array" zavconf import in.json out.bin)
expect(3 "out.txt: lost: http://x: the key holds.*lost: : an empty key.*lost: deep:r: element 1, 1.23e-06 becomes 1e-06\n$"
       zavconf convert out.bin out.txt)
expect(0 "^$" zavconf convert out.txt back.bin)
expect(0 "^$" zavconf export back.bin back.json)
file(WRITE ${WORK}/whole.json "{\"a\":9007199254740991}")
expect(0 "^$" zavconf import whole.json whole.txt)
expect(0 "^9007199254740991\n$" zavconf get whole.txt a)
file(WRITE ${WORK}/scalar.json "5")
expect(1 "scalar.json:1:2: valid JSON" zavconf import scalar.json out.bin)
file(WRITE ${WORK}/large.txt "<< /a [ 1.5 1e999 ] >>")
expect(3 "null.*lost: a: no finite number" zavconf export large.txt)
expect(2 "no/folder.json: " zavconf export back.bin no/folder.json)

# Nothing is granted, left out or half read in silence.
expect(2 "no name for a lock" zavlock pool lock a::b)
expect(2 "^zavlock: ${DATA}/broken.zav:4:3: .*hierarchy" zavlock ${DATA}/broken.zav list)
expect(2 "^zavlock: no/pool: File exception: " zavlock no/pool lock a)
file(WRITE ${WORK}/through.txt "<< /a 5 >>")
expect(2 "^zavlock: through.txt: .*lock .a:b." zavlock through.txt lock a:b)
expect(0 "^NOBODY_HAS_LOCK" zavlock pool unlock a:b)
foreach(count 5x -5 99999999999999999999999)
    expect(2 "^usage: zavtrace" zavtrace --count ${count})
endforeach()
file(WRITE ${WORK}/de.po "msgid \"a\"\nmsgstr \"b\"\n\nmsgid \"a\"\nmsgstr \"c\"\n\nmsgid \"d\"\nmsgstr \"\\377\"\n")
expect(1 "there twice: a\n.*not UTF-8: d\n" zavmsg import -o de.txt de.po)
expect(0 "^b\n$" zavconf get de.txt a)
file(WRITE ${WORK}/defs.txt "<< /t (x) /n 5 /two [ (x) (y) ] >>")
expect(1 "no text: n\n.*no text: two\n" zavmsg extract --defs defs.txt -o ${odd}.de)
expect(0 "^$" zavmsg check --defs ${odd}.de ${odd}.de)
expect(2 "no/such.po: cannot be read" zavmsg import no/such.po)
expect(2 "^zavmsg: ${DATA}/broken.zav:4:3: .*hierarchy" zavmsg extract --defs ${DATA}/broken.zav)
expect(2 "^zavmsg: no/out: File exception: " zavmsg extract -o no/out)
expect(2 "de.po: neither" zavmod info de.po)

# What only a system with a shell can be made to do: full disks, lack of memory, pipes without a writer.
if(EMULATOR OR NOT EXISTS /dev/full)
    return()
endif()
function(expect_shell status output line)
    execute_process(COMMAND sh -c "PATH=${BIN}:$PATH; ${line}" WORKING_DIRECTORY ${WORK} RESULT_VARIABLE result
                    OUTPUT_VARIABLE out ERROR_VARIABLE err TIMEOUT 60)
    if(NOT result STREQUAL "${status}" OR NOT "${out}${err}" MATCHES "${output}")
        message(SEND_ERROR "${line}\nwanted ${status}: ${output}\nfound ${result}: ${out}${err}")
    endif()
endfunction()
foreach(line "zavconf list out.txt" "zavmsg extract" "zavmod info ${BIN}/libzavbase.so" "zavlock --help")
    expect_shell(2 "standard output cannot be written" "${line} >/dev/full")
endforeach()
expect_shell(2 "pipe: " "mkfifo pipe; zavconf list pipe")
if(NOT SANITIZE)
    foreach(line "zavconf import huge x.txt" "zavmsg import huge" "zavmod info huge")
        expect_shell(4 "^[a-z]*: out of memory\n$" "truncate -s 2G huge; ulimit -v 500000; ${line}")
    endforeach()
endif()
