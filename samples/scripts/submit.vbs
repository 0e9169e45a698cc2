' Reads the capabilities of a service, submits a job to it and tells where the job's data goes.
'
'   cscript //nologo submit.vbs ID ADDRESS
'
' The library, the components and a transport library for the address must be registered and configured for the bitness
' of the script engine: %SystemRoot%\SysWOW64\cscript.exe is the 32-bit one of a 64-bit Windows.
Option Explicit

Dim service, parent, agent, access, answer, transport

If WScript.Arguments.Count <> 2 Then
    WScript.Echo "usage: cscript //nologo submit.vbs ID ADDRESS"
    WScript.Quit 2
End If

' An unhandled error would be told differently, or not at all, by different script hosts.
On Error Resume Next

Set parent = CreateObject("QBNORVEL.WendrelParent")
Check "creating the parent"
Set service = CreateObject("QBNORVEL.ServiceDesc")
Check "creating the service description"
service.SetID WScript.Arguments(0)
service.SetAddress WScript.Arguments(1)
Check "describing the service"

Set agent = parent.CreateWendrel(service)
Check "creating the agent"
WScript.Echo "capabilities: " & agent.GetCapabilitiesTicket()
Check "reading the capabilities"

Set answer = agent.SendIntentTicket("<intentTicket><jobName>Programme</jobName></intentTicket>")
Check "submitting the job"

' The answer is a plain IUnknown, on which VBScript calls nothing: this gives its other side.
Set access = CreateObject("QBNORVEL.ScriptAccess")
Set transport = access.AsObject(answer)
Check "reading the answer"
WScript.Echo "data address: " & transport.GetTargetURI()
WScript.Echo "job address: " & transport.GetJobURI()
Check "reading the addresses"

' A failing status arrives as an error with the status as its number.
Set answer = agent.SendIntentTicket("")
WScript.Echo "an empty ticket: 0x" & Hex(Err.Number)
WScript.Quit 0

Sub Check(doing)
    If Err.Number = 0 Then Exit Sub
    WScript.Echo "failed " & doing & ": 0x" & Hex(Err.Number) & " " & Err.Description
    WScript.Quit 1
End Sub
