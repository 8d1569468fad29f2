-- SPDX-License-Identifier: ISC
-- Run by ardour7-lua. Makes a session in PUFFGUARD_SESSION with one stereo track that holds the
-- plug-in PUFFGUARD_PLUGIN of the format PUFFGUARD_FORMAT, sets its values, and saves. With
-- PUFFGUARD_LOAD it loads the session instead, and saves it under that name.
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

if copy then
	local session = load_session(folder, "puffguard")
	assert(session, "the session can't be loaded")
	local processor = session:route_by_name("Voice"):nth_plugin(0)
	assert(not processor:isnil(), "the plug-in is gone")
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
	local insert = processor:to_plugininsert()
	for index, value in string.gmatch(os.getenv("PUFFGUARD_VALUES"), "(%d+)=([%d.]+)") do
		assert(ARDOUR.LuaAPI.set_processor_param(processor, tonumber(index), tonumber(value)), "no parameter " .. index)
	end
	print(string.format("latency\t%d", insert:signal_latency()))
	print_values(processor)
	session:save_state("", false, false, false, false, false)
	insert = nil
	processor = nil
	track = nil
	tracks = nil
	session = nil
end
collectgarbage()
close_session()
quit()
