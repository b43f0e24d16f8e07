"""unread.py SIGNAL WORD...: runs the command, reads nothing of what it prints, and sends it the signal when the tool has
ended."""
import os
import signal
import subprocess
import sys
import time

command = subprocess.Popen(sys.argv[2:], stdout=subprocess.PIPE)
while not os.path.exists("printed"):
    time.sleep(0.01)
time.sleep(0.5)
command.send_signal(signal.Signals[sys.argv[1]])
try:
    print("ended by", signal.Signals(-command.wait(20)).name)
except subprocess.TimeoutExpired:
    print("hangs")
    command.kill()
