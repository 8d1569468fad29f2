-- SPDX-License-Identifier: ISC
-- Run by ardour7-lua. Makes a session in PUFFGUARD_SESSION with one stereo track that holds the
-- plug-in PUFFGUARD_PLUGIN of the format PUFFGUARD_FORMAT, loads the preset PUFFGUARD_PRESET if there
-- is one, sets its values, and saves. With PUFFGUARD_LOAD it loads the session instead, and saves it
-- under that name. Either way it says which latency Ardour is told; as soon as that is
-- PUFFGUARD_LATENCY, else after five seconds.
local folder, plugin, format = os.getenv("PUFFGUARD_SESSION"), os.getenv("PUFFGUARD_PLUGIN"), os.getenv("PUFFGUARD_FORMAT")
local copy = os.getenv("PUFFGUARD_LOAD")

local backend = AudioEngine:set_backend("None (Dummy)", "puffguard", "")
backend:set_buffer_size(1024)

-- What the plug-in's controls stand at.
local function print_values(processor)
	local plugin_inside = processor:to_plugininsert():plugin(0)
	local number = 0
	for i = 0, plugin_inside:parameter_count() - 1 do
		if plugin_inside:parameter_is_control(i) and plugin_inside:parameter_is_input(i) then
			local value = ARDOUR.LuaAPI.get_processor_param(processor, number, true)
			print(string.format("value\t%s\t%.6g", plugin_inside:parameter_label(i), value))
			number = number + 1
		end
	end
end

-- The audio runs in other threads.
local function print_latency(processor)
	local insert = processor:to_plugininsert()
	for _ = 1, 50 do
		if insert:signal_latency() == tonumber(os.getenv("PUFFGUARD_LATENCY")) then
			break
		end
		ARDOUR.LuaAPI.usleep(100000)
	end
	print(string.format("latency\t%d", insert:signal_latency()))
end

local function load_preset(processor, label)
	local plugin_inside = processor:to_plugininsert():plugin(0)
	local preset = plugin_inside:preset_by_label(label)
	assert(preset.valid and plugin_inside:load_preset(preset), "no preset " .. label)
end

if copy then
	local session = load_session(folder, "puffguard")
	assert(session, "the session can't be loaded")
	local processor = session:route_by_name("Voice"):nth_plugin(0)
	assert(not processor:isnil(), "the plug-in is gone")
	print_latency(processor)
	print_values(processor)
	session:save_state(copy, false, false, false, false, false)
	processor = nil
	session = nil
else
	local session = create_session(folder, "puffguard", 48000)
	assert(session, "no session can be made")
	local tracks = session:new_audio_track(2, 2, nil, 1, "Voice", ARDOUR.PresentationInfo.max_order, ARDOUR.TrackMode.Normal, true)
	local track = tracks:front()
	local processor = ARDOUR.LuaAPI.new_plugin(session, plugin, ARDOUR.PluginType[format], "")
	assert(not processor:isnil(), "no such plug-in")
	track:add_processor_by_index(processor, 0, nil, true)
	if os.getenv("PUFFGUARD_PRESET") then
		load_preset(processor, os.getenv("PUFFGUARD_PRESET"))
	end
	for index, value in string.gmatch(os.getenv("PUFFGUARD_VALUES"), "(%d+)=([%d.]+)") do
		assert(ARDOUR.LuaAPI.set_processor_param(processor, tonumber(index), tonumber(value)), "no parameter " .. index)
	end
	print_latency(processor)
	print_values(processor)
	session:save_state("", false, false, false, false, false)
	processor = nil
	track = nil
	tracks = nil
	session = nil
end
collectgarbage()
close_session()
quit()
